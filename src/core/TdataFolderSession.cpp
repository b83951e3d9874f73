#include "TdataFolderSession.h"
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

TdataFolderSession::TdataFolderSession(const std::filesystem::path &dataFolder)
{
    std::error_code ec;
    if (!std::filesystem::is_directory(dataFolder, ec))
        return;
    // Someone else's link, FIFO or device in its place must neither redirect nor block us.
    const std::filesystem::path path = dataFolder / FileName;
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0644);
    if (fd < 0)
        return;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return;
    }
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        m_inUse = errno == EWOULDBLOCK;
        char text[32] = {};
        if (m_inUse && ::pread(fd, text, sizeof text - 1, 0) > 0)
            m_holder = std::max(0L, std::strtol(text, nullptr, 10));
        ::close(fd);
        return;
    }
    const std::string pid = std::to_string(::getpid()) + "\n";
    if (::ftruncate(fd, 0) == 0)
        (void)!::pwrite(fd, pid.data(), pid.size(), 0);
    m_fd = fd;
}

TdataFolderSession::~TdataFolderSession()
{
    // Closing releases the lock; the stale number left behind is never read while unlocked.
    if (m_fd >= 0)
        ::close(m_fd);
}
