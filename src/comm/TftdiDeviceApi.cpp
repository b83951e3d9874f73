#include "TftdiDeviceApi.h"
#include <algorithm>
#include <chrono>
#include <cstring>
#include <ftdi.h>
#include <libusb.h>
#include <thread>

namespace {
// The chip holds back a short reply until its latency timer runs out (16 ms by
// default). Every block of an upload waits for a 2-byte acknowledgement, so the
// default would add about 11 s to a full upload; 2 ms keeps it near the line's
// speed. It is the only setting made on the chip itself. The chip also answers
// every bulk read within this timer, with a status-only packet when it has no
// data, so an idle read costs at most LatencyMs and the poll periods stay as they are.
// The USB read time-out is far longer than that: libftdi fails a read that times
// out and drops the bytes it had already gathered in that call, so a time-out
// must only ever mean a silent device.
constexpr unsigned char LatencyMs = 2;
constexpr int UsbReadTimeoutMs = 200;
// Whole packets of both full-speed (64-byte) and high-speed (512-byte) chips.
constexpr unsigned ReadChunkSize = 4096;
}

TftdiDeviceApi::TftdiDeviceApi() : m_ftdi(ftdi_new()) {}

TftdiDeviceApi::~TftdiDeviceApi()
{
    close();
    if (m_ftdi)
        ftdi_free(m_ftdi);
}

std::vector<libusb_device *> TftdiDeviceApi::devices()
{
    std::vector<libusb_device *> result;
    if (!m_ftdi || !m_ftdi->usb_ctx)
        return result;
    libusb_device **list = nullptr;
    ssize_t count = libusb_get_device_list(m_ftdi->usb_ctx, &list);
    for (ssize_t i = 0; i < count; ++i) {
        libusb_device_descriptor descriptor {};
        if (libusb_get_device_descriptor(list[i], &descriptor) == 0 && descriptor.idVendor == FtdiVendorId) {
            libusb_ref_device(list[i]);
            result.push_back(list[i]);
        }
    }
    if (list)
        libusb_free_device_list(list, 1);
    return result;
}

bool TftdiDeviceApi::openDevice(libusb_device *device)
{
    if (ftdi_usb_open_dev(m_ftdi, device) != 0)
        return false;
    if (ftdi_read_data_set_chunksize(m_ftdi, ReadChunkSize) != 0) {
        ftdi_usb_close(m_ftdi);
        return false;
    }
    // A chip that refuses keeps its default latency: slower uploads, same results.
    ftdi_set_latency_timer(m_ftdi, LatencyMs);
    m_ftdi->usb_read_timeout = UsbReadTimeoutMs;
    libusb_device_descriptor descriptor {};
    libusb_get_device_descriptor(device, &descriptor);
    m_vendorId = descriptor.idVendor;
    m_open = true;
    m_readAhead.clear();
    return true;
}

bool TftdiDeviceApi::openByDescription(const std::string &description)
{
    close();
    bool opened = false;
    for (libusb_device *device : devices()) {
        char product[128] = {};
        if (!opened && ftdi_usb_get_strings(m_ftdi, device, nullptr, 0, product, sizeof product, nullptr, 0) == 0
            && description == product)
            opened = openDevice(device);
        libusb_unref_device(device);
    }
    return opened;
}

int TftdiDeviceApi::deviceCount()
{
    if (!m_ftdi || !m_ftdi->usb_ctx)
        return -1;
    auto list = devices();
    for (libusb_device *device : list)
        libusb_unref_device(device);
    return int(list.size());
}

bool TftdiDeviceApi::openByIndex(int index)
{
    close();
    auto list = devices();
    bool opened = index >= 0 && std::size_t(index) < list.size() && openDevice(list[std::size_t(index)]);
    for (libusb_device *device : list)
        libusb_unref_device(device);
    return opened;
}

int TftdiDeviceApi::vendorId()
{
    return m_open ? m_vendorId : -1;
}

bool TftdiDeviceApi::fill()
{
    if (!m_open)
        return false;
    std::uint8_t chunk[ReadChunkSize];
    int r = ftdi_read_data(m_ftdi, chunk, sizeof chunk);
    if (r == LIBUSB_ERROR_TIMEOUT)
        return true; // nothing came; the device is still there
    if (r < 0)
        return false;
    m_readAhead.insert(m_readAhead.end(), chunk, chunk + r);
    return true;
}

int TftdiDeviceApi::read(std::uint8_t *buffer, std::size_t n)
{
    if (!m_open)
        return -1;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(250 + n);
    while (m_readAhead.size() < n && std::chrono::steady_clock::now() < deadline)
        if (!fill())
            return -1;
    std::size_t count = std::min(n, m_readAhead.size());
    std::memcpy(buffer, m_readAhead.data(), count);
    m_readAhead.erase(m_readAhead.begin(), m_readAhead.begin() + std::ptrdiff_t(count));
    return int(count);
}

int TftdiDeviceApi::write(const std::uint8_t *buffer, std::size_t n)
{
    if (!m_open)
        return -1;
    return ftdi_write_data(m_ftdi, buffer, int(n));
}

int TftdiDeviceApi::queueStatus()
{
    if (!fill())
        return -1;
    return int(m_readAhead.size());
}

void TftdiDeviceApi::waitForData(std::size_t needed, int periodMs)
{
    // Each fill returns within the chip's latency timer.
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(periodMs);
    while (m_readAhead.size() < needed && std::chrono::steady_clock::now() < deadline)
        if (!fill()) {
            std::this_thread::sleep_until(deadline);
            return;
        }
}

void TftdiDeviceApi::close()
{
    if (m_open)
        ftdi_usb_close(m_ftdi);
    m_open = false;
    m_vendorId = -1;
    m_readAhead.clear();
}
