#include "TftdiDeviceApi.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ftdi.h>
#include <libusb.h>
#include <thread>

namespace {
// The chip holds back a short reply until its latency timer runs out (16 ms by
// default). Every block of an upload waits for a 2-byte acknowledgement, so the
// default would add about 11 s to a full upload; 2 ms keeps it near the line's
// speed. It is the only setting made on the chip itself.
constexpr unsigned char LatencyMs = 2;
// The pending count only looks: it must not hold up a poll.
constexpr std::chrono::milliseconds LookOnly {1};

bool openRefused(libusb_device *device)
{
    libusb_device_handle *handle = nullptr;
    int r = libusb_open(device, &handle);
    if (r == 0)
        libusb_close(handle);
    return r == LIBUSB_ERROR_ACCESS;
}
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

std::string TftdiDeviceApi::describe(libusb_device *device, const char *product)
{
    libusb_device_descriptor descriptor {};
    libusb_get_device_descriptor(device, &descriptor);
    char ids[16];
    std::snprintf(ids, sizeof ids, "%04x:%04x", descriptor.idVendor, descriptor.idProduct);
    return std::string(ids) + " \"" + product + "\"";
}

bool TftdiDeviceApi::openDevice(libusb_device *device, const char *product)
{
    // Not libftdi's open: it resets the chip, sets 9600 baud and leaves the kernel's
    // serial driver detached. The analyzer's line needs neither setting (the chip
    // powers up at 9600 and nothing here changes that), and the serial driver gets
    // the device back when we release it.
    libusb_device_handle *handle = nullptr;
    if (libusb_open(device, &handle) != 0) {
        noteOpenAttempt({describe(device, product), openRefused(device)});
        return false;
    }
    libusb_set_auto_detach_kernel_driver(handle, 1);
    ftdi_set_interface(m_ftdi, INTERFACE_A);
    if (int claimed = libusb_claim_interface(handle, m_ftdi->interface); claimed != 0) {
        libusb_close(handle);
        noteOpenAttempt({describe(device, product), false, claimed == LIBUSB_ERROR_BUSY});
        return false;
    }
    ftdi_set_usbdev(m_ftdi, handle);
    m_ftdi->max_packet_size = unsigned(std::max(libusb_get_max_packet_size(device, std::uint8_t(m_ftdi->out_ep)), 0));
    // A chip that refuses keeps its default latency: slower uploads, same results.
    ftdi_set_latency_timer(m_ftdi, LatencyMs);
    // One bulk transfer reports what it moved even when it times out, where a
    // libftdi read drops what earlier transfers of the same call had gathered.
    ftdi_context *ftdi = m_ftdi;
    m_reader = std::make_unique<TusbPacketReader>(
        [ftdi](std::uint8_t *buffer, std::size_t size, int timeoutMs) {
            int moved = 0;
            int r = libusb_bulk_transfer(ftdi->usb_dev, static_cast<unsigned char>(ftdi->out_ep), buffer, int(size),
                                         &moved, unsigned(timeoutMs));
            return r == 0 || r == LIBUSB_ERROR_TIMEOUT ? moved : -1;
        },
        m_ftdi->max_packet_size);
    libusb_device_descriptor descriptor {};
    libusb_get_device_descriptor(device, &descriptor);
    m_vendorId = descriptor.idVendor;
    m_open = true;
    m_readAhead.clear();
    // A failure later in the transfer names the device it had.
    noteOpenAttempt({describe(device, product), false});
    return true;
}

bool TftdiDeviceApi::openByDescription(const std::string &description)
{
    close();
    bool opened = false;
    for (libusb_device *device : devices()) {
        if (!opened)
            opened = openIfDescribed(device, description);
        libusb_unref_device(device);
    }
    return opened;
}

bool TftdiDeviceApi::openIfDescribed(libusb_device *device, const std::string &description)
{
    char product[128] = {};
    if (ftdi_usb_get_strings(m_ftdi, device, nullptr, 0, product, sizeof product, nullptr, 0) != 0) {
        noteOpenAttempt({describe(device, ""), openRefused(device)});
        return false;
    }
    if (description == product)
        return openDevice(device, product);
    // What a failed open of this device said stays: it says more.
    if (lastOpenAttempt().device != describe(device, product))
        noteOpenAttempt({describe(device, product), false});
    return false;
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
    bool opened = false;
    if (index >= 0 && std::size_t(index) < list.size()) {
        libusb_device *device = list[std::size_t(index)];
        char product[128] = {};
        ftdi_usb_get_strings(m_ftdi, device, nullptr, 0, product, sizeof product, nullptr, 0);
        opened = openDevice(device, product);
    }
    for (libusb_device *device : list)
        libusb_unref_device(device);
    return opened;
}

int TftdiDeviceApi::vendorId()
{
    return m_open ? m_vendorId : -1;
}

bool TftdiDeviceApi::fill(std::size_t needed, std::chrono::milliseconds within)
{
    return m_open && m_reader->fill(m_readAhead, needed, within);
}

int TftdiDeviceApi::read(std::uint8_t *buffer, std::size_t n)
{
    if (!m_open)
        return -1;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(250 + n);
    while (m_readAhead.size() < n && std::chrono::steady_clock::now() < deadline)
        if (!fill(n, std::chrono::milliseconds(TusbPacketReader::LongestCallMs)))
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
    if (!fill(0, LookOnly))
        return -1;
    return int(m_readAhead.size());
}

void TftdiDeviceApi::waitForData(std::size_t needed, int periodMs)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(periodMs);
    if (!fill(needed, std::chrono::milliseconds(periodMs)))
        std::this_thread::sleep_until(deadline);
}

void TftdiDeviceApi::close()
{
    if (m_open)
        ftdi_usb_close(m_ftdi);
    m_open = false;
    m_vendorId = -1;
    m_readAhead.clear();
    m_reader.reset();
}
