#pragma once
// TusbDeviceApi over libftdi1. Devices are found through libusb by vendor id and
// product description; the pending count is this object's own read-ahead buffer.
#include "TusbDeviceApi.h"
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
    bool openDevice(libusb_device *device);
    // Moves whatever the device has ready into the read-ahead buffer; false when it is gone.
    bool fill();

    ftdi_context *m_ftdi = nullptr;
    bool m_open = false;
    int m_vendorId = -1;
    std::vector<std::uint8_t> m_readAhead;
};
