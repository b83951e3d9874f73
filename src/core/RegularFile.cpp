#include "RegularFile.h"
#include "TrustedLinks.h"
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

bool openRegularFile(std::ifstream &in, const std::filesystem::path &path)
{
    std::filesystem::path resolved;
    if (!resolveTrustedLinks(path, resolved))
        return false;
    // Non-blocking, so a FIFO swapped in after any check cannot hang the open; the
    // type is then checked on what was really opened.
    const int fd = ::open(resolved.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW);
    if (fd < 0)
        return false;
    struct stat st {};
    const bool regular = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    // Reopening through the descriptor reaches the very file just checked, whatever
    // its name points at by now.
    if (regular)
        in.open("/proc/self/fd/" + std::to_string(fd), std::ios::binary);
    ::close(fd);
    return regular && in.is_open();
}

bool small(std::ifstream &in)
{
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    in.seekg(0);
    return in && size >= 0 && size <= 64 * 1024;
}
