#include "TcliProgressSink.h"
#include <csignal>

namespace {
std::atomic<bool> interrupted{false};

void onInterrupt(int)
{
    interrupted = true;
}
}

TcliProgressSink::TcliProgressSink(std::ostream &out, bool terminal) : m_out(out), m_terminal(terminal)
{
    interrupted = false;
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
}

TcliProgressSink::~TcliProgressSink()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

void TcliProgressSink::setStage(const std::string &text)
{
    std::lock_guard lock(m_mutex);
    m_stage = text;
    if (m_terminal)
        draw();
    else
        m_out << text << "\n" << std::flush;
}

void TcliProgressSink::setPosition(int percent)
{
    std::lock_guard lock(m_mutex);
    if (percent == m_position)
        return;
    m_position = percent;
    if (m_terminal)
        draw();
}

bool TcliProgressSink::isCancelled() const
{
    return interrupted;
}

void TcliProgressSink::setCancelled()
{
    interrupted = true;
}

void TcliProgressSink::setResult(TransferResult result)
{
    m_result = result;
}

void TcliProgressSink::finish()
{
    std::lock_guard lock(m_mutex);
    if (m_drawn)
        m_out << "\n" << std::flush;
    m_drawn = false;
}

void TcliProgressSink::draw()
{
    constexpr int width = 30;
    const int filled = m_position * width / 100;
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.resize(width, '.');
    // \033[K clears what a longer stage text left behind.
    m_out << "\r" << m_stage << " [" << bar << "] " << m_position << "%\033[K" << std::flush;
    m_drawn = true;
}
