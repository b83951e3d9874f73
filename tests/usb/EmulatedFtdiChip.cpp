#include "EmulatedFtdiChip.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/ioctl.h>
#include <linux/usbdevice_fs.h>
#include <umockdev.h>
#include <unistd.h>

namespace {
constexpr const char *Node = "/dev/bus/usb/001/001";
constexpr std::size_t Packet = 64, Status = 2, Payload = Packet - Status, Setup = 8;
constexpr char ModemStatus[Status] = {0x31, 0x60}; // CTS and DSR up, transmitter empty
// Device, configuration, interface and the two bulk endpoints, as sysfs shows them.
constexpr const char *Descriptors = "12010002000000080304016000060102030109022000010100802d0904000002ffffff02"
                                    "0705810240000007050202400000";

UMockdevIoctlData *resolved(UMockdevIoctlData *data, std::size_t offset, std::size_t size)
{
    return umockdev_ioctl_data_resolve(data, offset, size, nullptr);
}

template <typename T> T &as(UMockdevIoctlData *data) { return *reinterpret_cast<T *>(data->data); }

std::string stringDescriptor(const std::string &text)
{
    std::string d {char(2 + 2 * text.size()), 3};
    for (char c : text)
        d += {c, 0};
    return d;
}
}

EmulatedFtdiChip::EmulatedFtdiChip() : m_testbed(umockdev_testbed_new()), m_handler(umockdev_ioctl_base_new())
{
    // A machine with USB: the bus folder is there with nothing attached.
    gchar *root = umockdev_testbed_get_root_dir(m_testbed);
    std::filesystem::create_directories(std::filesystem::path(root) / "dev/bus/usb");
    g_free(root);
    g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(onIoctl), this);
}

EmulatedFtdiChip::~EmulatedFtdiChip()
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

void EmulatedFtdiChip::plug(const std::string &product, const std::string &serialSide, ChipFaults faults)
{
    m_product = product;
    m_faults = faults;
    if (faults.claimedElsewhere) { // by a client that is not one of ours
        m_claimedBy = &m_faults;
        m_driverBound = false;
    }
    m_serial = ::open(serialSide.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    // The handler first, so that the device opens as soon as it is listed.
    umockdev_testbed_attach_ioctl(m_testbed, Node, m_handler, nullptr);
    const std::string device = "P: /devices/usb1\nN: bus/usb/001/001\nE: SUBSYSTEM=usb\nE: DRIVER=usb\nE: BUSNUM=001\n"
                               "E: DEVNUM=001\nE: DEVNAME=/dev/bus/usb/001/001\nE: DEVTYPE=usb_device\n"
                               "A: busnum=1\\n\nA: devnum=1\\n\nA: bConfigurationValue=1\\n\nA: speed=12\\n\n"
                               "A: idVendor=0403\\n\nA: idProduct=6001\\n\nA: product="
        + product + "\\n\nH: descriptors=" + Descriptors + "\n";
    umockdev_testbed_add_from_string(m_testbed, device.c_str(), nullptr);
}

std::vector<std::string> EmulatedFtdiChip::events()
{
    std::lock_guard lock(m_mutex);
    return m_events;
}

EmulatedFtdiChip::Clock::time_point EmulatedFtdiChip::lastRelease()
{
    std::lock_guard lock(m_mutex);
    return m_lastRelease;
}

int EmulatedFtdiChip::onIoctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, void *self)
{
    long result = 0;
    const int error = static_cast<EmulatedFtdiChip *>(self)->handle(
        client, umockdev_ioctl_client_get_request(client), umockdev_ioctl_client_get_arg(client), result);
    umockdev_ioctl_client_complete(client, error ? -1 : result, error);
    return TRUE;
}

int EmulatedFtdiChip::handle(UMockdevIoctlClient *client, unsigned long request, UMockdevIoctlData *arg,
                             long &result)
{
    std::lock_guard lock(m_mutex);
    exchangeWithSerialSide();
    if (request == USBDEVFS_REAPURBNDELAY)
        return reap(arg);
    if (m_gone)
        return ENODEV;
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES: {
        UMockdevIoctlData *caps = resolved(arg, 0, sizeof(std::uint32_t));
        as<std::uint32_t>(caps) =
            USBDEVFS_CAP_BULK_CONTINUATION | USBDEVFS_CAP_NO_PACKET_SIZE_LIM | USBDEVFS_CAP_REAP_AFTER_DISCONNECT;
        g_object_unref(caps);
        return 0;
    }
    case USBDEVFS_DISCONNECT_CLAIM:
    case USBDEVFS_CLAIMINTERFACE:
        return claim(client, request == USBDEVFS_DISCONNECT_CLAIM);
    case USBDEVFS_RELEASEINTERFACE:
        if (m_claimedBy != client)
            return EINVAL;
        m_claimedBy = nullptr;
        m_lastRelease = Clock::now();
        m_events.push_back("release");
        return 0;
    case USBDEVFS_IOCTL: {
        UMockdevIoctlData *command = resolved(arg, 0, sizeof(usbdevfs_ioctl));
        const int code = as<usbdevfs_ioctl>(command).ioctl_code;
        g_object_unref(command);
        if (code == int(USBDEVFS_CONNECT) && !m_claimedBy) {
            if (!m_driverBound)
                m_events.push_back("attach ftdi_sio");
            m_driverBound = true;
            result = 1;
            return 0;
        }
        return code == int(USBDEVFS_CONNECT) ? EBUSY : ENODATA;
    }
    case USBDEVFS_SUBMITURB:
        return submit(arg);
    case USBDEVFS_DISCARDURB:
        return discard(arg);
    default:
        return ENOTTY;
    }
}

int EmulatedFtdiChip::claim(UMockdevIoctlClient *client, bool detach)
{
    if ((m_claimedBy && m_claimedBy != client) || (m_driverBound && !detach))
        return EBUSY;
    if (m_driverBound)
        m_events.push_back("detach ftdi_sio");
    m_driverBound = false;
    m_claimedBy = client;
    m_events.push_back("claim");
    return 0;
}

int EmulatedFtdiChip::submit(UMockdevIoctlData *arg)
{
    UMockdevIoctlData *data = resolved(arg, 0, sizeof(usbdevfs_urb));
    auto &urb = as<usbdevfs_urb>(data);
    if (urb.buffer_length > 0)
        g_object_unref(resolved(data, offsetof(usbdevfs_urb, buffer), std::size_t(urb.buffer_length)));
    urb.actual_length = urb.status = 0;
    Urb pending {data, urb.endpoint == 0x81, false, Clock::now()};
    if (urb.type == USBDEVFS_URB_TYPE_CONTROL && urb.endpoint == 0) {
        control(pending);
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

void EmulatedFtdiChip::control(Urb &pending)
{
    auto &urb = as<usbdevfs_urb>(pending.data);
    auto *setup = static_cast<std::uint8_t *>(urb.buffer);
    const unsigned type = setup[0], request = setup[1], value = setup[2] | setup[3] << 8,
                   index = setup[4] | setup[5] << 8, length = setup[6] | setup[7] << 8;
    std::string reply;
    if (type == 0x80 && request == 6 && value >> 8 == 3) { // a string descriptor
        const unsigned which = value & 0xff;
        reply = which == 0 ? std::string("\x04\x03\x09\x04", 4)
                           : stringDescriptor(which == 1 ? "Brennix Systems" : which == 2 ? m_product : "KT930EMU");
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
    pending.done = true;
}

void EmulatedFtdiChip::exchangeWithSerialSide()
{
    char chunk[4096];
    for (ssize_t n; m_serial >= 0 && (n = ::read(m_serial, chunk, sizeof chunk)) > 0;)
        m_fromSerial.append(chunk, std::size_t(n));
    for (ssize_t n; !m_toSerial.empty() && (n = ::write(m_serial, m_toSerial.data(), m_toSerial.size())) > 0;)
        m_toSerial.erase(0, std::size_t(n));
}

void EmulatedFtdiChip::fillIn(Urb &pending, Clock::time_point now)
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

void EmulatedFtdiChip::appendPacket(Urb &pending, std::size_t payload, Clock::time_point now)
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

int EmulatedFtdiChip::reap(UMockdevIoctlData *arg)
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
    UMockdevIoctlData *pointer = resolved(arg, 0, sizeof(void *));
    umockdev_ioctl_data_set_ptr(pointer, 0, done->data);
    g_object_unref(pointer);
    g_object_unref(done->data);
    m_urbs.erase(done);
    return 0;
}

int EmulatedFtdiChip::discard(UMockdevIoctlData *arg)
{
    for (Urb &urb : m_urbs) {
        if (urb.data->client_addr == as<gulong>(arg) && !urb.done) {
            // What the chip had put into it stays, as the kernel keeps it.
            as<usbdevfs_urb>(urb.data).status = -ENOENT;
            urb.done = true;
            return 0;
        }
    }
    return EINVAL;
}

void EmulatedFtdiChip::unplugNow()
{
    m_gone = true;
    for (Urb &urb : m_urbs)
        if (!urb.done)
            as<usbdevfs_urb>(urb.data).status = -ENODEV, urb.done = true;
}
