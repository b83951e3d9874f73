#pragma once
// A scripted USB device: which descriptions and indexes open, the vendor id of
// each index, and the bytes it answers with. Every call is logged.
#include "TusbDeviceApi.h"
#include <algorithm>
#include <memory>
#include <set>
#include <utility>
#include <vector>

struct FakeUsbScript {
    std::set<std::string> descriptions; // descriptions that open
    std::vector<int> vendors;           // vendor id per device index
    std::string incoming, written;      // bytes the device has for us, bytes we sent
    std::size_t consumed = 0;           // of incoming (no erasing: a full transfer is 185 KB)
    // A slow line: when set, incoming becomes readable this many bytes a poll
    // (a waitForData call), and polls are counted. Polls take no time here.
    std::size_t perPoll = 0, readable = 0;
    int polls = 0;
    std::vector<std::string> calls;
    bool gone = false; // queue status fails
};

class FakeUsbDevice : public TusbDeviceApi {
public:
    explicit FakeUsbDevice(std::shared_ptr<FakeUsbScript> script) : s(std::move(script)) {}
    bool openByDescription(const std::string &description) override
    {
        s->calls.push_back("open " + description);
        m_vendor = FtdiVendorId;
        return m_open = s->descriptions.count(description) > 0;
    }
    int deviceCount() override { return int(s->vendors.size()); }
    bool openByIndex(int index) override
    {
        s->calls.push_back("open #" + std::to_string(index));
        m_vendor = (m_open = index < deviceCount()) ? s->vendors[std::size_t(index)] : -1;
        return m_open;
    }
    int vendorId() override { return m_open ? m_vendor : -1; }
    int read(std::uint8_t *buffer, std::size_t n) override
    {
        const std::size_t count = std::min(n, pending());
        std::copy_n(s->incoming.begin() + std::ptrdiff_t(s->consumed), count, buffer);
        s->consumed += count;
        s->readable -= s->perPoll ? count : 0;
        return int(count);
    }
    int write(const std::uint8_t *buffer, std::size_t n) override
    {
        s->written.append(reinterpret_cast<const char *>(buffer), n);
        return int(n);
    }
    int queueStatus() override { return s->gone ? -1 : int(pending()); }
    void waitForData(std::size_t, int) override
    {
        if (!s->perPoll)
            return;
        ++s->polls;
        s->readable = std::min(s->incoming.size() - s->consumed, s->readable + s->perPoll);
    }
    void close() override
    {
        if (std::exchange(m_open, false))
            s->calls.push_back("close");
    }

private:
    std::size_t pending() const { return s->perPoll ? s->readable : s->incoming.size() - s->consumed; }
    std::shared_ptr<FakeUsbScript> s;
    bool m_open = false;
    int m_vendor = -1;
};

// Installs the fake for the lifetime of the object.
struct FakeUsbInstalled {
    std::shared_ptr<FakeUsbScript> script = std::make_shared<FakeUsbScript>();
    FakeUsbInstalled() { TusbDeviceApi::setFactory([s = script] { return std::make_unique<FakeUsbDevice>(s); }); }
    ~FakeUsbInstalled() { TusbDeviceApi::setFactory({}); }
};
