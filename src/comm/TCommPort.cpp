#include "TCommPort.h"
#include "TserialPortMap.h"
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {
std::mutex overridesMutex;
std::map<int, std::string> overrides;

speed_t speedOf(std::uint32_t baud)
{
    switch (baud) {
    case 300: return B300;
    case 600: return B600;
    case 1200: return B1200;
    case 2400: return B2400;
    case 4800: return B4800;
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    case 57600: return B57600;
    case 115200: return B115200;
    default: return 0;
    }
}

using Clock = std::chrono::steady_clock;

int remainingMs(Clock::time_point deadline)
{
    // Rounded up, so a poll never ends before its period.
    auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? int(left) : 0;
}
}

TCommPort::~TCommPort()
{
    CloseCommPort();
}

void TCommPort::setPortOverrides(const std::map<int, std::string> &map)
{
    std::lock_guard lock(overridesMutex);
    overrides = map;
}

std::string TCommPort::devicePath(int n)
{
    std::lock_guard lock(overridesMutex);
    return TserialPortMap::deviceOf(n, overrides);
}

std::string TCommPort::resolve(const std::string &name)
{
    if (name.size() > 3 && name.compare(0, 3, "COM") == 0
        && name.find_first_not_of("0123456789", 3) == std::string::npos)
        return devicePath(std::stoi(name.substr(3)));
    return name;
}

void TCommPort::SetCommPort(const std::string &name)
{
    if (GetConnected())
        throw ECommError(ECommError::PortAlreadyOpen, 0);
    m_name = name;
}

// Each setter stores the value; on an open port it is applied at once and a
// refusal restores the previous value and throws the setting's code.
template <typename T>
void TCommPort::change(T &field, T value, std::uint8_t code)
{
    T old = field;
    field = value;
    if (GetConnected() && !applySettings()) {
        int error = errno;
        field = old;
        applySettings();
        throw ECommError(code, error);
    }
}

void TCommPort::SetBaudRate(std::uint32_t value) { change(m_baudRate, value, ECommError::BadBaudRate); }
void TCommPort::SetByteSize(std::uint8_t value) { change(m_byteSize, value, ECommError::BadByteSize); }
void TCommPort::SetParity(std::uint8_t value) { change(m_parity, value, ECommError::BadParity); }
void TCommPort::SetStopBits(std::uint8_t value) { change(m_stopBits, value, ECommError::BadStopBits); }

bool TCommPort::applySettings()
{
    termios tio {};
    if (tcgetattr(m_fd, &tio) != 0)
        return false;
    speed_t speed = speedOf(m_baudRate);
    if (speed == 0) {
        errno = EINVAL;
        return false;
    }
    cfmakeraw(&tio);
    tio.c_cflag |= CLOCAL | CREAD;
    tio.c_cflag &= ~CSIZE;
    switch (m_byteSize) {
    case 5: tio.c_cflag |= CS5; break;
    case 6: tio.c_cflag |= CS6; break;
    case 7: tio.c_cflag |= CS7; break;
    case 8: tio.c_cflag |= CS8; break;
    default: errno = EINVAL; return false;
    }
    tio.c_cflag &= ~(PARENB | PARODD);
    if (m_parity == 1)
        tio.c_cflag |= PARENB | PARODD;
    else if (m_parity == 2)
        tio.c_cflag |= PARENB;
    else if (m_parity != 0) {
        errno = EINVAL;
        return false;
    }
    if (m_stopBits == 2)
        tio.c_cflag |= CSTOPB;
    else if (m_stopBits == 0)
        tio.c_cflag &= ~CSTOPB;
    else {
        errno = EINVAL;
        return false;
    }
    // Reads are driven by poll deadlines, never by the line discipline.
    tio.c_cc[VMIN] = 0;
    tio.c_cc[VTIME] = 0;
    if (cfsetispeed(&tio, speed) != 0 || cfsetospeed(&tio, speed) != 0)
        return false;
    return tcsetattr(m_fd, TCSANOW, &tio) == 0;
}

void TCommPort::OpenCommPort()
{
    if (GetConnected())
        return;
    std::string path = resolve(m_name);
    int fd = path.empty() ? -1 : ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        throw ECommError(ECommError::OpenError, path.empty() ? ENOENT : errno);
    // Exclusive, like a port opened without sharing. A privileged process opens a
    // port that another program holds exclusively: that port is busy, and its hold
    // is not ours to take or clear.
    int held = 0;
    if (ioctl(fd, TIOCGEXCL, &held) != 0 || held || ioctl(fd, TIOCEXCL) != 0) {
        int error = held ? EBUSY : errno;
        ::close(fd);
        throw ECommError(ECommError::OpenError, error);
    }
    termios tio {};
    if (tcgetattr(fd, &tio) != 0) {
        int error = errno;
        closeDevice(fd);
        throw ECommError(ECommError::GetCommStateError, error);
    }
    m_fd = fd;
    if (!applySettings()) {
        int error = errno;
        closeDevice(fd);
        m_fd = -1;
        throw ECommError(ECommError::SetCommStateError, error);
    }
    m_inputQueue.clear();
    m_inputQueue.reserve(InputQueueSize);
}

void TCommPort::CloseCommPort()
{
    if (m_fd >= 0) {
        closeDevice(m_fd);
        m_fd = -1;
    }
    m_inputQueue.clear();
}

void TCommPort::closeDevice(int fd)
{
    // The exclusive mark belongs to the tty, which may outlive this descriptor
    // (a pseudo-terminal's does while its master is open): drop it first.
    ioctl(fd, TIOCNXCL);
    ::close(fd);
}

void TCommPort::WriteBuffer(const std::uint8_t *buffer, std::size_t n)
{
    if (!GetConnected())
        throw ECommError(ECommError::PortNotOpen, 0);
    if (!buffer || n == 0)
        return;
    // Same budget as the reads: 1 ms per byte plus 250 ms.
    auto deadline = Clock::now() + std::chrono::milliseconds(ReadMultiplierMs * n + ReadConstantMs);
    std::size_t done = 0;
    while (done < n) {
        ssize_t r = ::write(m_fd, buffer + done, n - done);
        if (r > 0) {
            done += std::size_t(r);
            continue;
        }
        if (r < 0 && errno != EAGAIN && errno != EINTR)
            throw ECommError(ECommError::WriteError);
        int left = remainingMs(deadline);
        if (left == 0)
            throw ECommError(ECommError::WriteError, ETIMEDOUT);
        pollfd p {m_fd, POLLOUT, 0};
        ::poll(&p, 1, left);
    }
}

std::size_t TCommPort::ReadBytes(std::uint8_t *buffer, std::size_t n)
{
    if (!GetConnected())
        throw ECommError(ECommError::PortNotOpen, 0);
    auto deadline = Clock::now() + std::chrono::milliseconds(ReadMultiplierMs * n + ReadConstantMs);
    std::size_t got = std::min(n, m_inputQueue.size());
    std::copy_n(m_inputQueue.begin(), got, buffer);
    m_inputQueue.erase(m_inputQueue.begin(), m_inputQueue.begin() + std::ptrdiff_t(got));
    while (got < n) {
        ssize_t r = ::read(m_fd, buffer + got, n - got);
        if (r > 0) {
            got += std::size_t(r);
            continue;
        }
        if (r < 0 && errno != EAGAIN && errno != EINTR)
            throw ECommError(ECommError::ReadError);
        int wait = remainingMs(deadline);
        if (got > 0 && wait > ReadIntervalMs)
            wait = ReadIntervalMs;
        if (wait == 0)
            break;
        pollfd p {m_fd, POLLIN, 0};
        if (::poll(&p, 1, wait) == 0)
            break; // total deadline or inter-byte gap passed
        if (p.revents & (POLLERR | POLLNVAL))
            throw ECommError(ECommError::ReadError);
        if ((p.revents & POLLHUP) && !(p.revents & POLLIN))
            break;
    }
    if (got < n)
        buffer[got] = 0;
    return got;
}

void TCommPort::fillInputQueue()
{
    // Read errors are left to ReadBytes, which reports them with their own code.
    while (m_inputQueue.size() < InputQueueSize) {
        std::uint8_t chunk[4096];
        ssize_t r = ::read(m_fd, chunk, std::min(sizeof chunk, InputQueueSize - m_inputQueue.size()));
        if (r <= 0)
            break;
        m_inputQueue.insert(m_inputQueue.end(), chunk, chunk + r);
    }
}

std::size_t TCommPort::BytesAvailable()
{
    if (!GetConnected())
        throw ECommError(ECommError::PortNotOpen, 0);
    fillInputQueue();
    int count = 0;
    if (ioctl(m_fd, FIONREAD, &count) != 0)
        throw ECommError(ECommError::ClearCommError);
    return m_inputQueue.size() + std::size_t(count);
}

void TCommPort::WaitReadable(int periodMs)
{
    if (!GetConnected() || periodMs <= 0 || m_inputQueue.size() >= InputQueueSize)
        return;
    pollfd p {m_fd, POLLIN, 0};
    if (::poll(&p, 1, periodMs) > 0 && (p.revents & POLLHUP) && !(p.revents & POLLIN))
        std::this_thread::sleep_for(std::chrono::milliseconds(periodMs)); // nothing will come
}
