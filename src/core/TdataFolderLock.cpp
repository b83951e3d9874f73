#include "TdataFolderLock.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
struct Held {
    int fd = -1;
    int depth = 0;
};

std::mutex g_mutex;
std::map<std::string, Held> g_held;
std::chrono::milliseconds g_testWait{-1};

std::string holderOf(int fd)
{
    char text[32] = {};
    const ssize_t n = ::pread(fd, text, sizeof text - 1, 0);
    const long pid = n > 0 ? std::strtol(text, nullptr, 10) : 0;
    return pid > 0 ? "process " + std::to_string(pid) : "another program";
}

// The lock file is never followed through a link nor opened if it is not a plain
// file: someone else's FIFO must not block us.
int openLockFile(const fs::path &path, bool create)
{
    int fd = ::open(path.c_str(), O_RDWR | (create ? O_CREAT : 0) | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0644);
    if (fd < 0 && (errno == EACCES || errno == EROFS))
        fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0)
        return -1;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        errno = EINVAL;
        return -1;
    }
    return fd;
}
}

void TdataFolderLock::setWaitForTests(std::chrono::milliseconds wait)
{
    g_testWait = wait;
}

TdataFolderLock::TdataFolderLock(const fs::path &dataFolder, Mode mode, std::chrono::milliseconds wait)
{
    std::error_code ec;
    if (!fs::is_directory(dataFolder, ec)) {
        m_locked = true;
        return;
    }
    const fs::path canonical = fs::weakly_canonical(dataFolder, ec);
    m_key = (ec ? dataFolder : canonical).string();
    std::lock_guard<std::mutex> guard(g_mutex);
    Held &held = g_held[m_key];
    if (held.depth > 0) {
        ++held.depth;
        m_locked = true;
        return;
    }
    const fs::path path = dataFolder / ".lock";
    const int fd = openLockFile(path, mode == Mode::Write);
    if (fd < 0 && mode == Mode::Read && errno == ENOENT) {
        g_held.erase(m_key);
        m_key.clear();
        m_locked = true;
        return;
    }
    if (fd < 0) {
        m_failure = "The lock file " + path.string() + " cannot be opened (" + std::strerror(errno) + ").";
        g_held.erase(m_key);
        return;
    }
    if (g_testWait.count() >= 0)
        wait = g_testWait;
    const auto deadline = std::chrono::steady_clock::now() + wait;
    while (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            m_failure = "The data folder " + dataFolder.string() + " cannot be locked (" + std::strerror(errno) + ").";
            ::close(fd);
            g_held.erase(m_key);
            return;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            m_failure = "The data folder " + dataFolder.string() + " is being saved by " + holderOf(fd)
                + ", which has not finished. Try again later.";
            ::close(fd);
            g_held.erase(m_key);
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    const std::string pid = std::to_string(::getpid()) + "\n";
    if (::ftruncate(fd, 0) == 0)
        (void)!::pwrite(fd, pid.data(), pid.size(), 0);
    held.fd = fd;
    held.depth = 1;
    m_locked = true;
}

TdataFolderLock::~TdataFolderLock()
{
    if (!m_locked || m_key.empty())
        return;
    std::lock_guard<std::mutex> guard(g_mutex);
    auto it = g_held.find(m_key);
    if (it == g_held.end() || --it->second.depth > 0)
        return;
    // The number goes with the lock, so that a later holder that writes none (another
    // tool's flock) is never named as us. Released by closing; the file stays, so a
    // waiting program keeps its descriptor valid.
    (void)!::ftruncate(it->second.fd, 0);
    ::close(it->second.fd);
    g_held.erase(it);
}
