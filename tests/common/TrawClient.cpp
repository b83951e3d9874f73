#include "TrawClient.h"
#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace {
constexpr int GuardMs = 10000; // a failure guard, never a pause

enum class Arrival { Data, Nothing, Closed };

// One read of at most max bytes, appended to into, once some arrive within timeoutMs.
Arrival readOnce(int fd, int timeoutMs, std::size_t max, std::string &into)
{
    pollfd p{fd, POLLIN, 0};
    if (::poll(&p, 1, timeoutMs) <= 0)
        return Arrival::Nothing;
    char buffer[65536];
    ssize_t n = ::read(fd, buffer, std::min(sizeof buffer, max));
    if (n <= 0)
        return Arrival::Closed;
    into.append(buffer, static_cast<std::size_t>(n));
    return Arrival::Data;
}
}

TrawClient TrawClient::connectTcp(const std::string &address, int port)
{
    int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(static_cast<std::uint16_t>(port));
    ::inet_pton(AF_INET, address.c_str(), &peer.sin_addr);
    if (::connect(fd, reinterpret_cast<sockaddr *>(&peer), sizeof peer) != 0) {
        ::close(fd);
        fd = -1;
    }
    return TrawClient(fd);
}

TrawClient TrawClient::openPty(const std::string &path)
{
    int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd >= 0) {
        termios settings{};
        ::tcgetattr(fd, &settings);
        ::cfmakeraw(&settings);
        ::tcsetattr(fd, TCSANOW, &settings);
    }
    return TrawClient(fd);
}

TrawClient::TrawClient(TrawClient &&other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}

TrawClient::~TrawClient()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void TrawClient::send(const std::string &bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        // A socket the peer closed must fail the send, not raise SIGPIPE.
        ssize_t n = ::send(m_fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (n < 0 && errno == ENOTSOCK)
            n = ::write(m_fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;
        done += static_cast<std::size_t>(n);
    }
}

std::string TrawClient::receive(std::size_t count)
{
    std::string bytes;
    while (bytes.size() < count && readOnce(m_fd, GuardMs, count - bytes.size(), bytes) == Arrival::Data) {
    }
    return bytes;
}

bool TrawClient::waitClosed()
{
    for (std::string ignored;; ignored.clear())
        if (const Arrival arrival = readOnce(m_fd, GuardMs, 4096, ignored); arrival != Arrival::Data)
            return arrival == Arrival::Closed;
}

std::string TrawClient::pending()
{
    std::string bytes;
    while (readOnce(m_fd, 0, 4096, bytes) == Arrival::Data) {
    }
    return bytes;
}
