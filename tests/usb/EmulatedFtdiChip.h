#pragma once
// The analyzer's USB chip in a umockdev testbed: a full-speed FTDI-class device
// (vendor 0403, one interface, bulk endpoints 0x81 in and 0x02 out of 64 bytes)
// answering the usbfs ioctls of libusb and libftdi1 as the kernel and the chip
// would, for this process and the programs it starts. Its serial side is a file
// (the simulator's pseudo-terminal). Every packet to the PC starts with the two
// modem-status bytes; a short packet goes out when the latency timer runs out.
#include <chrono>
#include <deque>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

typedef struct _UMockdevTestbed UMockdevTestbed;
typedef struct _UMockdevIoctlBase UMockdevIoctlBase;
typedef struct _UMockdevIoctlClient UMockdevIoctlClient;
typedef struct _UMockdevIoctlData UMockdevIoctlData;

// Counted in payload bytes sent to the PC (in) or taken from it (out).
struct ChipFaults {
    static constexpr std::size_t Never = std::numeric_limits<std::size_t>::max();
    std::size_t stallAfterIn = Never;
    int stallMs = 0; // not a single packet for this long
    std::size_t unplugAfterIn = Never;
    std::size_t unplugAfterOut = Never;
    bool claimedElsewhere = false; // another program holds the interface
};

class EmulatedFtdiChip {
public:
    using Clock = std::chrono::steady_clock;

    EmulatedFtdiChip(); // an empty bus
    ~EmulatedFtdiChip();
    EmulatedFtdiChip(const EmulatedFtdiChip &) = delete;
    EmulatedFtdiChip &operator=(const EmulatedFtdiChip &) = delete;

    void plug(const std::string &product, const std::string &serialSide, ChipFaults faults = {});
    // In order: "detach ftdi_sio", "claim", "vendor request RR value VVVV index IIII",
    // "release", "attach ftdi_sio".
    std::vector<std::string> events();
    Clock::time_point lastRelease();

private:
    struct Urb {
        UMockdevIoctlData *data; // with its buffer resolved
        bool in, done;
        Clock::time_point lastPacket;
    };

    static int onIoctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, void *self);
    // The errno of a failed request, else 0 with the ioctl's result in `result`.
    int handle(UMockdevIoctlClient *client, unsigned long request, UMockdevIoctlData *arg, long &result);
    int claim(UMockdevIoctlClient *client, bool detach);
    int submit(UMockdevIoctlData *arg);
    void control(Urb &urb);
    void fillIn(Urb &urb, Clock::time_point now);
    void appendPacket(Urb &urb, std::size_t payload, Clock::time_point now);
    int reap(UMockdevIoctlData *arg);
    int discard(UMockdevIoctlData *arg);
    void exchangeWithSerialSide();
    void unplugNow();
    bool stalled(Clock::time_point now) const { return m_stallUntil && now < *m_stallUntil; }

    UMockdevTestbed *m_testbed;
    UMockdevIoctlBase *m_handler;
    std::string m_product;
    ChipFaults m_faults;
    int m_serial = -1;
    std::mutex m_mutex;
    std::vector<std::string> m_events;
    Clock::time_point m_lastRelease {};
    std::deque<Urb> m_urbs;
    std::string m_fromSerial, m_toSerial;
    std::size_t m_inBytes = 0, m_outBytes = 0;
    std::optional<Clock::time_point> m_stallUntil;
    bool m_gone = false, m_driverBound = true;
    const void *m_claimedBy = nullptr;
    int m_latencyMs = 16;
};
