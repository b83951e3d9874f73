#pragma once
// A scripted USB device: which descriptions and indexes open, the vendor id of
// each index, and the bytes it answers with. Every call is logged.
#include "TusbDeviceApi.h"
#include <algorithm>
#include <deque>
#include <memory>
#include <set>
#include <vector>

struct FakeUsbScript {
    std::set<std::string> descriptions; // descriptions that open
    std::vector<int> vendors;           // vendor id per device index
    std::string incoming;               // bytes the device has for us
    std::size_t consumed = 0;           // of incoming, read already (no erasing: a full transfer is 185 KB)
    // A slow line: when set, incoming becomes readable this many bytes a poll
    // (a waitForData call), and polls are counted. Polls take no time here.
    std::size_t perPoll = 0;
    std::size_t readable = 0;
    int polls = 0;
    std::string written;                // bytes we sent
    std::vector<std::string> calls;
    bool gone = false;                  // queue status fails
};

class FakeUsbDevice : public TusbDeviceApi {
public:
    explicit FakeUsbDevice(std::shared_ptr<FakeUsbScript> script) : m_script(std::move(script)) {}

    bool openByDescription(const std::string &description) override
    {
        m_script->calls.push_back("open " + description);
        m_open = m_script->descriptions.count(description) > 0;
        m_vendor = FtdiVendorId;
        return m_open;
    }
    int deviceCount() override { return int(m_script->vendors.size()); }
    bool openByIndex(int index) override
    {
        m_script->calls.push_back("open #" + std::to_string(index));
        m_open = index < int(m_script->vendors.size());
        m_vendor = m_open ? m_script->vendors[std::size_t(index)] : -1;
        return m_open;
    }
    int vendorId() override { return m_open ? m_vendor : -1; }
    int read(std::uint8_t *buffer, std::size_t n) override
    {
        std::size_t count = std::min(n, pending());
        std::copy_n(m_script->incoming.begin() + std::ptrdiff_t(m_script->consumed), count, buffer);
        m_script->consumed += count;
        if (m_script->perPoll)
            m_script->readable -= count;
        return int(count);
    }
    int write(const std::uint8_t *buffer, std::size_t n) override
    {
        m_script->written.append(reinterpret_cast<const char *>(buffer), n);
        return int(n);
    }
    int queueStatus() override { return m_script->gone ? -1 : int(pending()); }
    void waitForData(std::size_t, int) override
    {
        if (!m_script->perPoll)
            return;
        ++m_script->polls;
        m_script->readable = std::min(unread(), m_script->readable + m_script->perPoll);
    }
    void close() override
    {
        if (m_open)
            m_script->calls.push_back("close");
        m_open = false;
    }

private:
    std::size_t unread() const { return m_script->incoming.size() - m_script->consumed; }
    std::size_t pending() const { return m_script->perPoll ? m_script->readable : unread(); }

    std::shared_ptr<FakeUsbScript> m_script;
    bool m_open = false;
    int m_vendor = -1;
};

// Installs the fake for the lifetime of the object.
struct FakeUsbInstalled {
    std::shared_ptr<FakeUsbScript> script = std::make_shared<FakeUsbScript>();
    FakeUsbInstalled()
    {
        auto s = script;
        TusbDeviceApi::setFactory([s] { return std::make_unique<FakeUsbDevice>(s); });
    }
    ~FakeUsbInstalled() { TusbDeviceApi::setFactory({}); }
};
