#pragma once
// TusbDeviceApi over libftdi1. Devices are found through libusb by vendor id and
// product description; the pending count is this object's own read-ahead buffer.
#include "TusbDeviceApi.h"
#include "TusbPacketReader.h"
#include <memory>
#include <vector>

struct ftdi_context;
struct libusb_device;

class TftdiDeviceApi : public TusbDeviceApi {
public:
    TftdiDeviceApi();
    ~TftdiDeviceApi() override;

    bool openByDescription(const std::string &description) override;
    int deviceCount() override;
    bool openByIndex(int index) override;
    int vendorId() override;
    int read(std::uint8_t *buffer, std::size_t n) override;
    int write(const std::uint8_t *buffer, std::size_t n) override;
    int queueStatus() override;
    void waitForData(std::size_t needed, int periodMs) override;
    void close() override;

private:
    std::vector<libusb_device *> devices();
    bool openDevice(libusb_device *device, const char *product);
    bool openIfDescribed(libusb_device *device, const std::string &description);
    // Moves into the read-ahead buffer what arrives within `within`, until `needed`
    // bytes are there; false when the device is gone.
    bool fill(std::size_t needed, std::chrono::milliseconds within);
    static std::string describe(libusb_device *device, const char *product);

    ftdi_context *m_ftdi = nullptr;
    bool m_open = false;
    int m_vendorId = -1;
    std::vector<std::uint8_t> m_readAhead;
    std::unique_ptr<TusbPacketReader> m_reader;
};
