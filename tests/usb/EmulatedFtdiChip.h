#pragma once
// The analyzer's USB chip in a umockdev testbed: a full-speed FTDI-class device (vendor 0403, one interface, bulk
// endpoints 0x81 in and 0x02 out of 64 bytes) answering the usbfs ioctls of libusb and libftdi1 as the kernel and the
// chip would, for this process and the programs it starts. Its serial side is a file (the simulator's pseudo-terminal).
// Every packet to the PC starts with the two modem-status bytes; a short packet goes out when the latency timer runs
// out.
#include <algorithm>
#include <sys/ioctl.h>
#include <chrono>
#include <cstdio>
#include <deque>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <memory>
#include <linux/usbdevice_fs.h>
#include <mutex>
#include <optional>
#include <string>
#include <umockdev.h>
#include <unistd.h>
#include <utility>
#include <vector>

// Counted in payload bytes sent to the PC (in) or taken from it (out).
struct ChipFaults {
    static constexpr std::size_t Never = std::numeric_limits<std::size_t>::max();
    std::size_t stallAfterIn = Never;
    int stallMs = 0; // not a single packet for this long
    std::size_t unplugAfterIn = Never, unplugAfterOut = Never;
    bool claimedElsewhere = false; // another program holds the interface
};

class EmulatedFtdiChip {
public:
    using Clock = std::chrono::steady_clock;

    EmulatedFtdiChip() // an empty bus: a machine with USB, the bus folder there with nothing attached
    {
        gchar *root = umockdev_testbed_get_root_dir(m_testbed);
        std::filesystem::create_directories(std::filesystem::path(root) / "dev/bus/usb");
        g_free(root);
        g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(onIoctl), this);
    }
    ~EmulatedFtdiChip()
    {
        if (!m_product.empty())
            umockdev_testbed_detach_ioctl(m_testbed, Node, nullptr);
        g_object_unref(m_testbed);
        g_object_unref(m_handler);
        for (Urb &urb : m_urbs)
            g_object_unref(urb.data);
        if (m_serial >= 0)
            ::close(m_serial);
    }
    EmulatedFtdiChip(const EmulatedFtdiChip &) = delete;

    void plug(const std::string &product, const std::string &serialSide, ChipFaults faults = {})
    {
        m_product = product;
        m_faults = faults;
        m_claimedBy = faults.claimedElsewhere ? &m_faults : nullptr; // by a client that is not one of ours
        m_driverBound = !faults.claimedElsewhere;
        m_serial = ::open(serialSide.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        // The handler first, so that the device opens as soon as it is listed; the descriptors of
        // device, configuration, interface and the two bulk endpoints as sysfs shows them.
        umockdev_testbed_attach_ioctl(m_testbed, Node, m_handler, nullptr);
        const std::string device =
            "P: /devices/usb1\nN: bus/usb/001/001\nE: SUBSYSTEM=usb\nE: DRIVER=usb\nE: BUSNUM=001\nE: DEVNUM=001\n"
            "E: DEVNAME=/dev/bus/usb/001/001\nE: DEVTYPE=usb_device\nA: busnum=1\\n\nA: devnum=1\\n\n"
            "A: bConfigurationValue=1\\n\nA: speed=12\\n\nA: idVendor=0403\\n\nA: idProduct=6001\\n\nA: product=" +
            product +
            "\\n\nH: "
            "descriptors="
            "12010002000000080304016000060102030109022000010100802d0904000002ffffff020705810240000007050202400000\n";
        umockdev_testbed_add_from_string(m_testbed, device.c_str(), nullptr);
    }
    // In order: "detach ftdi_sio", "claim", "vendor request RR value VVVV index IIII", "release", "attach ftdi_sio".
    std::vector<std::string> events() { return locked(m_events); }
    Clock::time_point lastRelease() { return locked(m_lastRelease); }

private:
    static constexpr const char *Node = "/dev/bus/usb/001/001";
    static constexpr std::size_t Packet = 64, Status = 2, Payload = Packet - Status, Setup = 8;
    static constexpr char ModemStatus[Status] = {0x31, 0x60}; // CTS and DSR up, transmitter empty
    struct Urb { // data with its buffer resolved
        UMockdevIoctlData *data;
        bool in, done;
        Clock::time_point lastPacket;
    };

    template <typename T> T locked(const T &value)
    {
        std::lock_guard lock(m_mutex);
        return value;
    }
    using Resolved = std::unique_ptr<UMockdevIoctlData, void (*)(gpointer)>;
    static Resolved resolved(UMockdevIoctlData *data, std::size_t offset, std::size_t size)
    {
        return {umockdev_ioctl_data_resolve(data, offset, size, nullptr), g_object_unref};
    }
    template <typename T> static T &as(UMockdevIoctlData *data) { return *reinterpret_cast<T *>(data->data); }
    static int onIoctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, void *self)
    {
        long result = 0;
        const int error = static_cast<EmulatedFtdiChip *>(self)->handle(
            client, umockdev_ioctl_client_get_request(client), umockdev_ioctl_client_get_arg(client), result);
        umockdev_ioctl_client_complete(client, error ? -1 : result, error);
        return TRUE;
    }
    // The errno of a failed request, else 0 with the ioctl's result in `result`.
    int handle(UMockdevIoctlClient *client, unsigned long request, UMockdevIoctlData *arg, long &result)
    {
        std::lock_guard lock(m_mutex);
        exchangeWithSerialSide();
        if (request == USBDEVFS_REAPURBNDELAY)
            return reap(arg);
        if (m_gone)
            return ENODEV;
        switch (request) {
        case USBDEVFS_GET_CAPABILITIES: {
            as<std::uint32_t>(resolved(arg, 0, sizeof(std::uint32_t)).get()) =
                USBDEVFS_CAP_BULK_CONTINUATION | USBDEVFS_CAP_NO_PACKET_SIZE_LIM | USBDEVFS_CAP_REAP_AFTER_DISCONNECT;
            return 0;
        }
        case USBDEVFS_DISCONNECT_CLAIM:
        case USBDEVFS_CLAIMINTERFACE:
            if ((m_claimedBy && m_claimedBy != client) || (m_driverBound && request != USBDEVFS_DISCONNECT_CLAIM))
                return EBUSY;
            if (std::exchange(m_driverBound, false))
                m_events.push_back("detach ftdi_sio");
            m_claimedBy = client;
            m_events.push_back("claim");
            return 0;
        case USBDEVFS_RELEASEINTERFACE:
            if (m_claimedBy != client)
                return EINVAL;
            m_claimedBy = nullptr;
            m_lastRelease = Clock::now();
            m_events.push_back("release");
            return 0;
        case USBDEVFS_IOCTL: {
            if (as<usbdevfs_ioctl>(resolved(arg, 0, sizeof(usbdevfs_ioctl)).get()).ioctl_code != int(USBDEVFS_CONNECT))
                return ENODATA;
            if (m_claimedBy)
                return EBUSY;
            if (!std::exchange(m_driverBound, true))
                m_events.push_back("attach ftdi_sio");
            result = 1;
            return 0;
        }
        case USBDEVFS_SUBMITURB:
            return submit(arg);
        case USBDEVFS_DISCARDURB:
            for (Urb &urb : m_urbs)
                if (urb.data->client_addr == as<gulong>(arg) && !urb.done) {
                    // What the chip had put into it stays, as the kernel keeps it.
                    as<usbdevfs_urb>(urb.data).status = -ENOENT;
                    urb.done = true;
                    return 0;
                }
            return EINVAL;
        default:
            return ENOTTY;
        }
    }
    int submit(UMockdevIoctlData *arg)
    {
        UMockdevIoctlData *data = resolved(arg, 0, sizeof(usbdevfs_urb)).release();
        auto &urb = as<usbdevfs_urb>(data);
        if (urb.buffer_length > 0)
            resolved(data, offsetof(usbdevfs_urb, buffer), std::size_t(urb.buffer_length));
        urb.actual_length = urb.status = 0;
        Urb pending{data, urb.endpoint == 0x81, false, Clock::now()};
        if (urb.type == USBDEVFS_URB_TYPE_CONTROL && urb.endpoint == 0) {
            control(urb);
            pending.done = true;
        } else if (urb.type == USBDEVFS_URB_TYPE_BULK && urb.endpoint == 0x02) {
            m_toSerial.append(static_cast<const char *>(urb.buffer), std::size_t(urb.buffer_length));
            m_outBytes += std::size_t(urb.actual_length = urb.buffer_length);
            pending.done = true;
        } else if (urb.type != USBDEVFS_URB_TYPE_BULK || !pending.in) {
            g_object_unref(data);
            return EINVAL;
        }
        m_urbs.push_back(pending);
        if (m_outBytes >= m_faults.unplugAfterOut)
            unplugNow();
        return 0;
    }
    void control(usbdevfs_urb &urb)
    {
        auto *setup = static_cast<std::uint8_t *>(urb.buffer);
        const unsigned type = setup[0], request = setup[1], value = setup[2] | setup[3] << 8,
                       index = setup[4] | setup[5] << 8, length = setup[6] | setup[7] << 8;
        std::string reply;
        if (type == 0x80 && request == 6 && value >> 8 == 3) { // a string descriptor
            const unsigned which = value & 0xff;
            const std::string text = which == 1 ? "Brennix Systems" : which == 2 ? m_product : "KT930EMU";
            reply = which == 0 ? std::string("\x04\x03\x09\x04", 4) : std::string{char(2 + 2 * text.size()), 3};
            for (std::size_t i = 0; which != 0 && i < text.size(); ++i)
                reply += {text[i], 0};
        } else if ((type & 0x60) == 0x40) { // the chip's own requests
            char text[64];
            std::snprintf(text, sizeof text, "vendor request %02x value %04x index %04x", request, value, index);
            m_events.push_back(text);
            if (request == 9)
                m_latencyMs = int(value & 0xff);
            if (type & 0x80)
                reply.assign(length, '\0');
        } else {
            urb.status = -EPIPE;
        }
        reply.resize(std::min<std::size_t>({reply.size(), length, std::size_t(urb.buffer_length) - Setup}));
        std::copy(reply.begin(), reply.end(), setup + Setup);
        urb.actual_length = int(reply.size());
    }
    void exchangeWithSerialSide()
    {
        char chunk[4096];
        for (ssize_t n; m_serial >= 0 && (n = ::read(m_serial, chunk, sizeof chunk)) > 0;)
            m_fromSerial.append(chunk, std::size_t(n));
        for (ssize_t n; !m_toSerial.empty() && (n = ::write(m_serial, m_toSerial.data(), m_toSerial.size())) > 0;)
            m_toSerial.erase(0, std::size_t(n));
    }
    void fillIn(Urb &pending, Clock::time_point now)
    {
        auto &urb = as<usbdevfs_urb>(pending.data);
        auto room = [&] { return std::size_t(urb.buffer_length - urb.actual_length) >= Packet; };
        while (room() && m_fromSerial.size() >= Payload && !stalled(now))
            appendPacket(pending, Payload, now);
        if (stalled(now))
            return;
        // A full transfer ends; otherwise the latency timer sends what there is, maybe only the status.
        if (room() && now - pending.lastPacket >= std::chrono::milliseconds(m_latencyMs))
            appendPacket(pending, std::min(Payload, m_fromSerial.size()), now);
        else if (room())
            return;
        pending.done = true;
    }
    void appendPacket(Urb &pending, std::size_t payload, Clock::time_point now)
    {
        auto &urb = as<usbdevfs_urb>(pending.data);
        char *at = static_cast<char *>(urb.buffer) + urb.actual_length;
        std::copy_n(ModemStatus, Status, at);
        m_fromSerial.copy(at + Status, payload);
        m_fromSerial.erase(0, payload);
        urb.actual_length += int(Status + payload);
        pending.lastPacket = now;
        m_inBytes += payload;
        if (!m_stallUntil && m_inBytes >= m_faults.stallAfterIn)
            m_stallUntil = now + std::chrono::milliseconds(m_faults.stallMs);
    }
    int reap(UMockdevIoctlData *arg)
    {
        const auto now = Clock::now();
        for (Urb &urb : m_urbs)
            if (urb.in && !urb.done && !m_gone)
                fillIn(urb, now);
        if (!m_gone && m_inBytes >= m_faults.unplugAfterIn)
            unplugNow();
        auto done = std::find_if(m_urbs.begin(), m_urbs.end(), [](const Urb &urb) { return urb.done; });
        if (done == m_urbs.end())
            return m_gone ? ENODEV : EAGAIN;
        umockdev_ioctl_data_set_ptr(resolved(arg, 0, sizeof(void *)).get(), 0, done->data);
        g_object_unref(done->data);
        m_urbs.erase(done);
        return 0;
    }
    void unplugNow()
    {
        m_gone = true;
        for (Urb &urb : m_urbs)
            if (!urb.done)
                as<usbdevfs_urb>(urb.data).status = -ENODEV, urb.done = true;
    }
    bool stalled(Clock::time_point now) const { return m_stallUntil && now < *m_stallUntil; }

    UMockdevTestbed *m_testbed = umockdev_testbed_new();
    UMockdevIoctlBase *m_handler = umockdev_ioctl_base_new();
    std::string m_product;
    ChipFaults m_faults;
    int m_serial = -1, m_latencyMs = 16;
    std::mutex m_mutex;
    std::vector<std::string> m_events;
    Clock::time_point m_lastRelease{};
    std::deque<Urb> m_urbs;
    std::string m_fromSerial, m_toSerial;
    std::size_t m_inBytes = 0, m_outBytes = 0;
    std::optional<Clock::time_point> m_stallUntil;
    bool m_gone = false, m_driverBound = true;
    const void *m_claimedBy = nullptr;
};
