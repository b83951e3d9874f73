#include "TsimProcess.h"
#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

extern char **environ;

namespace {
constexpr int GuardMs = 10000; // a failure guard, never a pause
}

TsimProcess::TsimProcess(const std::vector<std::string> &arguments)
{
    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0)
        return;
    std::string program = std::string(KT930_TEST_APPDIR) + "/kt930sim";
    std::vector<char *> argv{program.data()};
    std::vector<std::string> copies = arguments;
    for (std::string &argument : copies)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 2);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    if (posix_spawn(&m_pid, program.c_str(), &actions, nullptr, argv.data(), environ) != 0)
        m_pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeFds[1]);
    m_stderr = pipeFds[0];
}

TsimProcess::~TsimProcess()
{
    stop();
    if (m_stderr >= 0)
        ::close(m_stderr);
}

bool TsimProcess::waitForLog(const std::string &text)
{
    for (;;) {
        std::size_t found = m_log.find(text, m_searched);
        if (found != std::string::npos) {
            m_searched = found + text.size();
            return true;
        }
        pollfd fd{m_stderr, POLLIN, 0};
        if (::poll(&fd, 1, GuardMs) <= 0)
            return false;
        char buffer[4096];
        ssize_t n = ::read(m_stderr, buffer, sizeof buffer);
        if (n <= 0)
            return false;
        m_log.append(buffer, static_cast<std::size_t>(n));
    }
}

int TsimProcess::stop()
{
    if (m_pid < 0)
        return -1;
    ::kill(m_pid, SIGTERM);
    return waitExit();
}

int TsimProcess::waitExit()
{
    if (m_pid < 0)
        return -1;
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_pid = -1;
    // Keep what it logged while stopping.
    char buffer[4096];
    for (ssize_t n; (n = ::read(m_stderr, buffer, sizeof buffer)) > 0;)
        m_log.append(buffer, static_cast<std::size_t>(n));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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

TrawClient::TrawClient(TrawClient &&other) noexcept : m_fd(other.m_fd)
{
    other.m_fd = -1;
}

TrawClient::~TrawClient()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void TrawClient::send(const std::string &bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(m_fd, bytes.data() + done, bytes.size() - done);
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
    while (bytes.size() < count) {
        pollfd fd{m_fd, POLLIN, 0};
        if (::poll(&fd, 1, GuardMs) <= 0)
            break;
        char buffer[65536];
        ssize_t n = ::read(m_fd, buffer, std::min(sizeof buffer, count - bytes.size()));
        if (n <= 0)
            break;
        bytes.append(buffer, static_cast<std::size_t>(n));
    }
    return bytes;
}

bool TrawClient::waitClosed()
{
    for (;;) {
        pollfd fd{m_fd, POLLIN, 0};
        if (::poll(&fd, 1, GuardMs) <= 0)
            return false;
        char buffer[4096];
        ssize_t n = ::read(m_fd, buffer, sizeof buffer);
        if (n <= 0)
            return true;
    }
}

std::string TrawClient::pending()
{
    std::string bytes;
    for (;;) {
        pollfd fd{m_fd, POLLIN, 0};
        if (::poll(&fd, 1, 0) <= 0)
            return bytes;
        char buffer[4096];
        ssize_t n = ::read(m_fd, buffer, sizeof buffer);
        if (n <= 0)
            return bytes;
        bytes.append(buffer, static_cast<std::size_t>(n));
    }
}
