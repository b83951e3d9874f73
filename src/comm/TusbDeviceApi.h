#pragma once
// The USB seam: the few device operations the transports need. The real one is
// TftdiDeviceApi (libftdi1); tests install a scripted device through setFactory.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

class TusbDeviceApi {
public:
    static constexpr int FtdiVendorId = 0x0403;

    virtual ~TusbDeviceApi() = default;
    // Opens the first FTDI-vendor device whose product description equals the text.
    virtual bool openByDescription(const std::string &description) = 0;
    // Number of attached FTDI-vendor devices, -1 when the bus cannot be listed.
    virtual int deviceCount() = 0;
    virtual bool openByIndex(int index) = 0;
    // USB vendor id of the open device, -1 when none is open.
    virtual int vendorId() = 0;
    // Bytes transferred, or -1 on a failure.
    virtual int read(std::uint8_t *buffer, std::size_t n) = 0;
    virtual int write(const std::uint8_t *buffer, std::size_t n) = 0;
    // Bytes received and not read yet, or -1 when the device is gone.
    virtual int queueStatus() = 0;
    // Waits up to periodMs for at least `needed` pending bytes.
    virtual void waitForData(std::size_t needed, int periodMs) = 0;
    virtual void close() = 0;

    // The device an open last tried, so a failure can name it and say why.
    struct OpenAttempt {
        std::string device;        // vendor:product "description"
        bool accessDenied = false; // present, but the user may not open it
        bool busy = false;         // opened, but another program holds it
    };
    static void noteOpenAttempt(OpenAttempt attempt);
    static OpenAttempt lastOpenAttempt();

    using Factory = std::function<std::unique_ptr<TusbDeviceApi>()>;
    // An empty factory restores the libftdi device.
    static void setFactory(Factory factory);
    static std::unique_ptr<TusbDeviceApi> create();
};
