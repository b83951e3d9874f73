#include "TsimLink.h"
#include "TstopSignal.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {
constexpr int WriteTimeoutMs = 10000; // a PC that stops reading for this long is gone
constexpr int PieceMs = 10;           // bytes go in pieces of about this much line time
}

TsimLink::TsimLink(int fd, std::string name, int baud) : m_fd(fd), m_name(std::move(name)), m_baud(baud) {}

std::chrono::steady_clock::time_point TsimLink::Pace::due(double count, double bytesPerSecond) const
{
    using namespace std::chrono;
    return start + duration_cast<steady_clock::duration>(duration<double>(count / bytesPerSecond));
}

void TsimLink::Pace::restart()
{
    start = std::chrono::steady_clock::now();
    bytes = 0;
}

TsimLink::Wait TsimLink::waitFor(short events, int timeoutMs)
{
    pollfd fds[2] = {{m_fd, events, 0}, {TstopSignal::fd(), POLLIN, 0}};
    for (;;) {
        int n = ::poll(fds, 2, timeoutMs);
        if (n < 0 && errno == EINTR)
            continue;
        if (TstopSignal::requested())
            return Wait::Stopped;
        if (n == 0)
            return Wait::TimedOut;
        return Wait::Ready; // readiness, hang-up and errors all show on the next read or write
    }
}

bool TsimLink::pauseUntil(std::chrono::steady_clock::time_point due)
{
    for (;;) {
        // To the nanosecond: whole milliseconds would stretch every short reply
        // (a 2-byte acknowledgement is 1.04 ms of line time at 19200 baud).
        auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(due - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return true;
        pollfd stop{TstopSignal::fd(), POLLIN, 0};
        const timespec wait{static_cast<time_t>(left.count() / 1000000000), static_cast<long>(left.count() % 1000000000)};
        ::ppoll(&stop, 1, &wait, nullptr);
        if (TstopSignal::requested())
            return false;
    }
}

TsimLink::Result TsimLink::write(const void *data, std::size_t size)
{
    const auto *bytes = static_cast<const std::uint8_t *>(data);
    const double bytesPerSecond = m_baud / 10.0;
    // A line that was idle starts its clock anew.
    if (m_baud > 0 && std::chrono::steady_clock::now() > m_out.due(m_out.bytes, bytesPerSecond))
        m_out.restart();
    // Pieces keep the pace smooth.
    const std::size_t piece = m_baud > 0 ? std::max<std::size_t>(1, m_baud * PieceMs / 10000) : size;
    std::size_t done = 0;
    while (done < size) {
        Wait wait = waitFor(POLLOUT, WriteTimeoutMs);
        if (wait == Wait::Stopped)
            return Result::Stopped;
        if (wait == Wait::TimedOut)
            return Result::TimedOut;
        ssize_t n = ::write(m_fd, bytes + done, std::min(piece, size - done));
        if (n < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (n <= 0)
            return Result::Closed;
        done += static_cast<std::size_t>(n);
        if (m_baud > 0) {
            m_out.bytes += static_cast<std::size_t>(n);
            if (!pauseUntil(m_out.due(m_out.bytes, bytesPerSecond)))
                return Result::Stopped;
        }
    }
    return Result::Ok;
}

TsimLink::Result TsimLink::readUpTo(std::size_t limit)
{
    char buffer[4096];
    for (;;) {
        ssize_t n = ::read(m_fd, buffer, std::min(limit, sizeof buffer));
        if (n > 0) {
            m_input.append(buffer, static_cast<std::size_t>(n));
            limit -= static_cast<std::size_t>(n);
            if (limit == 0 || static_cast<std::size_t>(n) < sizeof buffer)
                return Result::Ok;
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno == EAGAIN)
            return Result::Ok;
        return Result::Closed; // end of stream, or EIO on a hung-up terminal
    }
}

TsimLink::Result TsimLink::readPending()
{
    int pending = 0;
    // Nothing counted but readable: the end of the stream or a hang-up, which a read shows.
    if (m_baud <= 0 || ::ioctl(m_fd, FIONREAD, &pending) != 0 || pending <= 0)
        return readUpTo(SIZE_MAX);
    // The bytes the PC wrote wait in the kernel (whose small pseudo-terminal buffer
    // then holds the PC's writes back) until the line would have carried them.
    // Bytes that find nothing waiting before them start their way when they are seen;
    // behind a backlog they follow on without a gap.
    const double bytesPerSecond = m_baud / 10.0;
    if (!m_inBacklog)
        m_in.restart();
    const std::size_t piece = std::min<std::size_t>(static_cast<std::size_t>(pending),
                                                    std::max<std::size_t>(1, m_baud * PieceMs / 10000));
    if (!pauseUntil(m_in.due(m_in.bytes + piece, bytesPerSecond)))
        return Result::Stopped;
    const std::size_t before = m_input.size();
    Result result = readUpTo(piece);
    m_in.bytes += m_input.size() - before;
    m_inBacklog = static_cast<std::size_t>(pending) > m_input.size() - before;
    return result;
}

TsimLink::Result TsimLink::readExact(std::uint8_t *target, std::size_t size, int timeoutMs)
{
    while (m_input.size() < size) {
        Wait wait = waitFor(POLLIN, timeoutMs);
        if (wait == Wait::Stopped)
            return Result::Stopped;
        if (wait == Wait::TimedOut)
            return Result::TimedOut;
        if (readPending() == Result::Closed && m_input.size() < size)
            return Result::Closed;
    }
    std::memcpy(target, m_input.data(), size);
    m_input.erase(0, size);
    return Result::Ok;
}
