#include "TstopSignal.h"
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {
int pipeFds[2] = {-1, -1};
std::atomic<bool> stopRequested{false};

void onSignal(int)
{
    stopRequested = true;
    char byte = 1;
    [[maybe_unused]] ssize_t n = ::write(pipeFds[1], &byte, 1);
}
}

void TstopSignal::install()
{
    if (::pipe2(pipeFds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // a vanished client is a write error, not a death
}

int TstopSignal::fd()
{
    return pipeFds[0];
}

bool TstopSignal::requested()
{
    return stopRequested;
}
