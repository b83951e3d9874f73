#include "TsimServer.h"
#include "TstopSignal.h"
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

namespace {
void log(const std::string &text)
{
    std::cerr << "kt930sim: " << text << std::endl;
}

void setNonBlocking(int fd)
{
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
}

// What a symbolic link points at; empty for anything else.
std::string linkTarget(const std::filesystem::path &link)
{
    std::error_code ec;
    const std::filesystem::path target = std::filesystem::read_symlink(link, ec);
    return ec ? std::string() : target.string();
}
}

TsimServer::TsimServer(const TsimOptions &options, TsimMemory &memory) : m_options(options), m_memory(memory)
{
    m_settings.memoryFile = options.memoryFile;
    m_settings.putTimeoutMs = options.putTimeoutMs;
}

TsimServer::~TsimServer()
{
    detach(m_client);
    closePty();
    if (m_listenFd >= 0)
        ::close(m_listenFd);
}

bool TsimServer::start(std::string &why)
{
    if (!m_options.listenAddress.empty()) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(m_options.listenPort));
        if (::inet_pton(AF_INET, m_options.listenAddress.c_str(), &address.sin_addr) != 1) {
            why = "not an IPv4 address: " + m_options.listenAddress;
            return false;
        }
        m_listenFd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        int on = 1;
        ::setsockopt(m_listenFd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        if (::bind(m_listenFd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0
            || ::listen(m_listenFd, 4) != 0) {
            why = "cannot listen on " + m_options.listenAddress + ":" + std::to_string(m_options.listenPort) + ": "
                + std::strerror(errno);
            return false;
        }
        socklen_t length = sizeof address;
        ::getsockname(m_listenFd, reinterpret_cast<sockaddr *>(&address), &length);
        log("listening on " + m_options.listenAddress + ":" + std::to_string(ntohs(address.sin_port)));
    }
    return m_options.ptyLink.empty() || openPty(why);
}

bool TsimServer::openPty(std::string &why)
{
    int master = -1;
    char slaveName[256] = {};
    if (::openpty(&master, &m_ptySlaveFd, slaveName, nullptr, nullptr) != 0) {
        why = std::string("cannot open a pseudo-terminal: ") + std::strerror(errno);
        return false;
    }
    // Raw bytes both ways: no echo, no CR/LF translation, no signals.
    termios settings{};
    ::tcgetattr(m_ptySlaveFd, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(m_ptySlaveFd, TCSANOW, &settings);
    ::fcntl(master, F_SETFD, FD_CLOEXEC);
    ::fcntl(m_ptySlaveFd, F_SETFD, FD_CLOEXEC);

    std::error_code ec;
    // Only a link to a pseudo-terminal, one a simulator left behind, is ours to replace.
    struct stat existing {};
    if (::lstat(m_options.ptyLink.c_str(), &existing) == 0) {
        if (linkTarget(m_options.ptyLink).rfind("/dev/pts/", 0) != 0) {
            why = "refusing to replace " + m_options.ptyLink.string()
                + ": it exists and is not a link to a pseudo-terminal";
            ::close(master);
            return false;
        }
        std::filesystem::remove(m_options.ptyLink, ec);
    }
    m_ptySlaveName = slaveName;
    std::filesystem::create_symlink(slaveName, m_options.ptyLink, ec);
    if (ec) {
        why = "cannot create the link " + m_options.ptyLink.string() + ": " + ec.message();
        ::close(master);
        return false;
    }
    attach(m_pty, master, "pty " + m_options.ptyLink.string());
    log("pseudo-terminal " + m_options.ptyLink.string() + " -> " + slaveName);
    return true;
}

void TsimServer::closePty()
{
    if (m_pty.fd < 0)
        return;
    detach(m_pty);
    ::close(m_ptySlaveFd);
    m_ptySlaveFd = -1;
    // Whatever has taken the link's place since is left alone.
    std::error_code ec;
    if (linkTarget(m_options.ptyLink) == m_ptySlaveName)
        std::filesystem::remove(m_options.ptyLink, ec);
}

void TsimServer::attach(Channel &channel, int fd, const std::string &name)
{
    setNonBlocking(fd);
    channel.fd = fd;
    channel.link = std::make_unique<TsimLink>(fd, name, m_options.baud);
    channel.session = std::make_unique<TsimSession>(*channel.link, m_memory, m_options.faults, m_settings);
}

void TsimServer::detach(Channel &channel)
{
    if (channel.fd < 0)
        return;
    channel.session.reset();
    channel.link.reset();
    ::close(channel.fd);
    channel.fd = -1;
}

void TsimServer::acceptClient()
{
    sockaddr_in peer{};
    socklen_t length = sizeof peer;
    int fd = ::accept4(m_listenFd, reinterpret_cast<sockaddr *>(&peer), &length, SOCK_CLOEXEC);
    if (fd < 0)
        return;
    int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    char text[INET_ADDRSTRLEN] = {};
    ::inet_ntop(AF_INET, &peer.sin_addr, text, sizeof text);
    std::string name = std::string("tcp ") + text + ":" + std::to_string(ntohs(peer.sin_port));
    attach(m_client, fd, name);
    log(name + ": connected");
}

void TsimServer::serve(Channel &channel, bool isPty)
{
    const std::string name = channel.link->name();
    bool keep = channel.link->readPending() == TsimLink::Result::Ok;
    if (!keep && isPty) {
        // The PC closed its side; our own slave descriptor keeps the terminal alive.
        keep = true;
    }
    if (keep && !TstopSignal::requested())
        keep = channel.session->serveInput();
    if (keep || TstopSignal::requested())
        return;
    if (isPty) {
        // Hang up the terminal and offer a fresh one at the same link.
        log(name + ": hung up");
        closePty();
        std::string why;
        if (!openPty(why))
            log(why);
    } else {
        detach(channel);
        log(name + ": disconnected");
    }
}

void TsimServer::run()
{
    log("ready");
    while (!TstopSignal::requested()) {
        pollfd fds[4];
        int count = 0;
        fds[count++] = {TstopSignal::fd(), POLLIN, 0};
        const int listenIndex = m_listenFd >= 0 && m_client.fd < 0 ? count : -1;
        if (listenIndex >= 0)
            fds[count++] = {m_listenFd, POLLIN, 0};
        const int clientIndex = m_client.fd >= 0 ? count : -1;
        if (clientIndex >= 0)
            fds[count++] = {m_client.fd, POLLIN, 0};
        const int ptyIndex = m_pty.fd >= 0 ? count : -1;
        if (ptyIndex >= 0)
            fds[count++] = {m_pty.fd, POLLIN, 0};

        if (::poll(fds, static_cast<nfds_t>(count), -1) < 0) {
            if (errno == EINTR)
                continue;
            log(std::string("poll failed: ") + std::strerror(errno));
            return;
        }
        if (listenIndex >= 0 && fds[listenIndex].revents)
            acceptClient();
        if (clientIndex >= 0 && fds[clientIndex].revents)
            serve(m_client, false);
        if (ptyIndex >= 0 && fds[ptyIndex].revents)
            serve(m_pty, true);
    }
    log("stopping");
}
