#include "EmulatedFtdiChip.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/ioctl.h>
#include <linux/usbdevice_fs.h>
#include <umockdev.h>
#include <unistd.h>

namespace {
constexpr const char *DeviceNode = "/dev/bus/usb/001/001";
constexpr std::size_t PacketSize = 64;
constexpr std::size_t StatusBytes = 2;
constexpr std::size_t SetupBytes = 8;
// Modem status: CTS and DSR up; line status: transmitter empty.
constexpr std::uint8_t ModemStatus[StatusBytes] = {0x31, 0x60};
constexpr const char *SerialDriver = "ftdi_sio";

// Device, configuration, interface and the two bulk endpoints, as sysfs shows them.
constexpr const char *Descriptors = "12010002000000080304016000060102030109022000010100802d"
                                    "0904000002ffffff02"
                                    "0705810240000007050202400000";

std::string stringDescriptor(const std::string &text)
{
    std::string d {char(2 + 2 * text.size()), 3};
    for (char c : text)
        d += {c, 0};
    return d;
}

UMockdevIoctlData *resolved(UMockdevIoctlData *data, std::size_t offset, std::size_t size)
{
    return umockdev_ioctl_data_resolve(data, offset, size, nullptr);
}

usbdevfs_urb &urbOf(UMockdevIoctlData *data) { return *reinterpret_cast<usbdevfs_urb *>(data->data); }
}

EmulatedFtdiChip::EmulatedFtdiChip() : m_testbed(umockdev_testbed_new()), m_handler(umockdev_ioctl_base_new())
{
    // A machine with USB: the bus folder is there even with nothing attached.
    gchar *root = umockdev_testbed_get_root_dir(m_testbed);
    std::filesystem::create_directories(std::filesystem::path(root) / "dev/bus/usb");
    g_free(root);
    g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(onIoctl), this);
}

EmulatedFtdiChip::~EmulatedFtdiChip()
{
    if (!m_product.empty())
        umockdev_testbed_detach_ioctl(m_testbed, DeviceNode, nullptr);
    g_object_unref(m_testbed);
    g_object_unref(m_handler);
    for (Urb &urb : m_urbs)
        g_object_unref(urb.data);
    if (m_serial >= 0)
        ::close(m_serial);
}

void EmulatedFtdiChip::plug(const std::string &product, const std::string &serialLine, Faults faults)
{
    m_product = product;
    m_faults = faults;
    m_serial = ::open(serialLine.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    // The handler first, so that the device opens as soon as it is listed.
    umockdev_testbed_attach_ioctl(m_testbed, DeviceNode, m_handler, nullptr);
    const std::string description = "P: /devices/usb1\nN: bus/usb/001/001\nE: SUBSYSTEM=usb\nE: DRIVER=usb\n"
                                    "E: BUSNUM=001\nE: DEVNUM=001\nE: DEVNAME=/dev/bus/usb/001/001\n"
                                    "E: DEVTYPE=usb_device\nA: busnum=1\\n\nA: devnum=1\\n\n"
                                    "A: bConfigurationValue=1\\n\nA: speed=12\\n\nA: idVendor=0403\\n\n"
                                    "A: idProduct=6001\\n\nA: product="
        + product + "\\n\nH: descriptors=" + Descriptors + "\n";
    umockdev_testbed_add_from_string(m_testbed, description.c_str(), nullptr);
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

void EmulatedFtdiChip::note(std::string event)
{
    m_events.push_back(std::move(event));
}

int EmulatedFtdiChip::onIoctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, void *self)
{
    long result = 0;
    auto &chip = *static_cast<EmulatedFtdiChip *>(self);
    int error = chip.handle(client, umockdev_ioctl_client_get_request(client), umockdev_ioctl_client_get_arg(client),
                            result);
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
        *reinterpret_cast<std::uint32_t *>(caps->data) =
            USBDEVFS_CAP_BULK_CONTINUATION | USBDEVFS_CAP_NO_PACKET_SIZE_LIM | USBDEVFS_CAP_REAP_AFTER_DISCONNECT;
        g_object_unref(caps);
        return 0;
    }
    case USBDEVFS_DISCONNECT_CLAIM:
    case USBDEVFS_CLAIMINTERFACE:
        if (m_claimedBy && m_claimedBy != client)
            return EBUSY;
        if (m_driverBound && request == USBDEVFS_CLAIMINTERFACE)
            return EBUSY;
        if (m_driverBound)
            note(std::string("detach ") + SerialDriver);
        m_driverBound = false;
        m_claimedBy = client;
        note("claim");
        return 0;
    case USBDEVFS_RELEASEINTERFACE:
        if (m_claimedBy != client)
            return EINVAL;
        m_claimedBy = nullptr;
        m_lastRelease = Clock::now();
        note("release");
        return 0;
    case USBDEVFS_GETDRIVER: {
        if (!m_driverBound && !m_claimedBy)
            return ENODATA;
        UMockdevIoctlData *driver = resolved(arg, 0, sizeof(usbdevfs_getdriver));
        std::strcpy(reinterpret_cast<usbdevfs_getdriver *>(driver->data)->driver,
                    m_driverBound ? SerialDriver : "usbfs");
        g_object_unref(driver);
        return 0;
    }
    case USBDEVFS_IOCTL: {
        UMockdevIoctlData *command = resolved(arg, 0, sizeof(usbdevfs_ioctl));
        const int code = reinterpret_cast<usbdevfs_ioctl *>(command->data)->ioctl_code;
        g_object_unref(command);
        if (code == int(USBDEVFS_CONNECT)) {
            if (m_claimedBy)
                return EBUSY;
            if (!m_driverBound)
                note(std::string("attach ") + SerialDriver);
            m_driverBound = true;
            result = 1;
            return 0;
        }
        if (code == int(USBDEVFS_DISCONNECT) && m_driverBound) {
            m_driverBound = false;
            note(std::string("detach ") + SerialDriver);
            return 0;
        }
        return ENODATA;
    }
    case USBDEVFS_SUBMITURB:
        return submit(arg);
    case USBDEVFS_DISCARDURB:
        return discard(arg);
    default:
        return ENOTTY;
    }
}

int EmulatedFtdiChip::submit(UMockdevIoctlData *arg)
{
    UMockdevIoctlData *data = resolved(arg, 0, sizeof(usbdevfs_urb));
    usbdevfs_urb &urb = urbOf(data);
    if (urb.buffer_length > 0)
        g_object_unref(resolved(data, offsetof(usbdevfs_urb, buffer), std::size_t(urb.buffer_length)));
    urb.actual_length = 0;
    urb.status = 0;
    Urb pending {data, urb.endpoint == 0x81, false, Clock::now()};
    if (urb.type == USBDEVFS_URB_TYPE_CONTROL && urb.endpoint == 0) {
        control(pending);
    } else if (urb.type == USBDEVFS_URB_TYPE_BULK && urb.endpoint == 0x02) {
        m_toSerial.append(static_cast<const char *>(urb.buffer), std::size_t(urb.buffer_length));
        m_outBytes += std::size_t(urb.buffer_length);
        urb.actual_length = urb.buffer_length;
        pending.done = true;
        exchangeWithSerialSide();
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
    usbdevfs_urb &urb = urbOf(pending.data);
    auto *buffer = static_cast<std::uint8_t *>(urb.buffer);
    const unsigned type = buffer[0], request = buffer[1];
    const unsigned value = buffer[2] | buffer[3] << 8, index = buffer[4] | buffer[5] << 8,
                   length = buffer[6] | buffer[7] << 8;
    std::string reply;
    if (type == 0x80 && request == 6 && value >> 8 == 3) {
        const unsigned which = value & 0xff;
        reply = which == 0 ? std::string("\x04\x03\x09\x04", 4)
                           : stringDescriptor(which == 1 ? "Brennix Systems" : which == 2 ? m_product : "KT930EMU");
    } else if ((type & 0x60) == 0x40) {
        char text[64];
        std::snprintf(text, sizeof text, "vendor request %02x value %04x index %04x", request, value, index);
        note(text);
        if (request == 9) // the latency timer
            m_latencyMs = int(value & 0xff);
        if (type & 0x80)
            reply.assign(length, '\0');
    } else {
        urb.status = -EPIPE;
    }
    reply.resize(std::min<std::size_t>(reply.size(), std::min<unsigned>(length, urb.buffer_length - SetupBytes)));
    std::copy(reply.begin(), reply.end(), buffer + SetupBytes);
    urb.actual_length = int(reply.size());
    pending.done = true;
}

void EmulatedFtdiChip::exchangeWithSerialSide()
{
    if (m_serial < 0)
        return;
    char chunk[4096];
    for (ssize_t n; (n = ::read(m_serial, chunk, sizeof chunk)) > 0;)
        m_fromSerial.append(chunk, std::size_t(n));
    while (!m_toSerial.empty()) {
        ssize_t n = ::write(m_serial, m_toSerial.data(), m_toSerial.size());
        if (n <= 0)
            break;
        m_toSerial.erase(0, std::size_t(n));
    }
}

void EmulatedFtdiChip::fillIn(Urb &pending, Clock::time_point now)
{
    usbdevfs_urb &urb = urbOf(pending.data);
    const std::size_t payload = PacketSize - StatusBytes;
    auto room = [&] { return std::size_t(urb.buffer_length - urb.actual_length) >= PacketSize; };
    if (m_stalled && now < m_stallUntil)
        return;
    while (room() && m_fromSerial.size() >= payload && !(m_stalled && now < m_stallUntil))
        appendPacket(pending, payload, now);
    if (m_stalled && now < m_stallUntil)
        return;
    // A full transfer ends; otherwise the latency timer sends what there is, maybe only the status.
    if (!room())
        pending.done = true;
    else if (now - pending.lastPacket >= std::chrono::milliseconds(m_latencyMs))
        appendPacket(pending, std::min(payload, m_fromSerial.size()), now), pending.done = true;
}

void EmulatedFtdiChip::appendPacket(Urb &pending, std::size_t payload, Clock::time_point now)
{
    usbdevfs_urb &urb = urbOf(pending.data);
    auto *at = static_cast<std::uint8_t *>(urb.buffer) + urb.actual_length;
    std::copy_n(ModemStatus, StatusBytes, at);
    std::copy_n(m_fromSerial.begin(), payload, at + StatusBytes);
    m_fromSerial.erase(0, payload);
    urb.actual_length += int(StatusBytes + payload);
    pending.lastPacket = now;
    m_inBytes += payload;
    if (!m_stalled && m_inBytes >= m_faults.stallAfterIn) {
        m_stalled = true;
        m_stallUntil = now + std::chrono::milliseconds(m_faults.stallMs);
    }
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
    const auto address = *reinterpret_cast<gulong *>(arg->data);
    for (Urb &urb : m_urbs) {
        if (urb.data->client_addr == address && !urb.done) {
            // What the chip had delivered into it stays; the caller sees it with the cancel.
            urbOf(urb.data).status = -ENOENT;
            urb.done = true;
            return 0;
        }
    }
    return EINVAL;
}

void EmulatedFtdiChip::unplugNow()
{
    m_gone = true;
    for (Urb &urb : m_urbs) {
        if (!urb.done) {
            urbOf(urb.data).status = -ENODEV;
            urb.done = true;
        }
    }
}
