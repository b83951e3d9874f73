#pragma once
// The analyzer's USB chip in a umockdev testbed: a full-speed FTDI-class device
// (vendor 0403, one interface, bulk endpoints 0x81 in and 0x02 out of 64 bytes)
// that answers the usbfs ioctls of libusb and libftdi1 as the kernel and the chip
// would. Its serial side is a file: the simulator's pseudo-terminal. Every packet
// it returns starts with the chip's two modem-status bytes; a short packet goes
// out when the chip's latency timer runs out. The ioctls are served on the
// testbed's own thread, for this process and for the programs it starts.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <mutex>
#include <string>
#include <vector>

typedef struct _UMockdevTestbed UMockdevTestbed;
typedef struct _UMockdevIoctlBase UMockdevIoctlBase;
typedef struct _UMockdevIoctlClient UMockdevIoctlClient;
typedef struct _UMockdevIoctlData UMockdevIoctlData;

// What goes wrong, counted in payload bytes sent to the PC (in) or taken from it (out).
struct ChipFaults {
    static constexpr std::size_t Never = std::numeric_limits<std::size_t>::max();
    std::size_t stallAfterIn = Never;
    int stallMs = 0; // no packet at all for this long
    std::size_t unplugAfterIn = Never;
    std::size_t unplugAfterOut = Never;
};

class EmulatedFtdiChip {
public:
    using Clock = std::chrono::steady_clock;
    using Faults = ChipFaults;

    // An empty bus; the testbed lives as long as this object.
    EmulatedFtdiChip();
    ~EmulatedFtdiChip();
    EmulatedFtdiChip(const EmulatedFtdiChip &) = delete;
    EmulatedFtdiChip &operator=(const EmulatedFtdiChip &) = delete;

    // Attaches the chip; serialLine is the path of the analyzer's side of the line.
    void plug(const std::string &product, const std::string &serialLine, Faults faults = {});

    // What the chip went through, in order: "detach ftdi_sio", "claim", "release",
    // "attach ftdi_sio", "vendor request RR value VVVV index IIII".
    std::vector<std::string> events();
    // When the interface was last released (time_point{} before that).
    Clock::time_point lastRelease();

private:
    struct Urb {
        UMockdevIoctlData *data; // the client's urb, with its buffer resolved
        bool in = false;
        bool done = false;
        Clock::time_point lastPacket;
    };

    static int onIoctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, void *self);
    // errno for a failed request, 0 when it succeeded; `result` is the ioctl's return value.
    int handle(UMockdevIoctlClient *client, unsigned long request, UMockdevIoctlData *arg, long &result);
    int submit(UMockdevIoctlData *arg);
    int reap(UMockdevIoctlData *arg);
    int discard(UMockdevIoctlData *arg);
    void control(Urb &urb);
    void fillIn(Urb &urb, Clock::time_point now);
    void appendPacket(Urb &urb, std::size_t payload, Clock::time_point now);
    void exchangeWithSerialSide();
    void unplugNow();
    void note(std::string event);

    UMockdevTestbed *m_testbed = nullptr;
    UMockdevIoctlBase *m_handler = nullptr;
    std::string m_product;
    Faults m_faults;
    int m_serial = -1;
    std::mutex m_mutex;
    std::vector<std::string> m_events;
    Clock::time_point m_lastRelease {};
    std::deque<Urb> m_urbs;
    std::string m_fromSerial, m_toSerial;
    std::size_t m_inBytes = 0, m_outBytes = 0;
    Clock::time_point m_stallUntil {};
    bool m_stalled = false;
    bool m_gone = false;
    bool m_driverBound = true;
    UMockdevIoctlClient *m_claimedBy = nullptr;
    int m_latencyMs = 16;
};
