#include "TsimProcess.h"
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

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
    std::vector<std::string> copies = arguments;
    std::vector<char *> argv{program.data()};
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
    if (m_pid > 0)
        ::kill(m_pid, SIGTERM);
    return waitExit();
}

int TsimProcess::waitExit()
{
    if (m_pid < 0)
        return -1;
    int status = 0;
    ::waitpid(std::exchange(m_pid, -1), &status, 0);
    // Keep what it logged while stopping.
    char buffer[4096];
    for (ssize_t n; (n = ::read(m_stderr, buffer, sizeof buffer)) > 0;)
        m_log.append(buffer, static_cast<std::size_t>(n));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
