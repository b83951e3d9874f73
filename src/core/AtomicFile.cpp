#include "AtomicFile.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

AtomicWriteResult writeFileAtomically(const fs::path &target, std::string_view bytes)
{
    // An existing file that we may not write stays as it is. For root, whom
    // access() never refuses, the owner's write bit decides.
    struct stat existing {};
    const bool exists = ::stat(target.c_str(), &existing) == 0;
    if (exists) {
        const bool writable = ::geteuid() == 0 ? (existing.st_mode & S_IWUSR) != 0 : ::access(target.c_str(), W_OK) == 0;
        if (!writable)
            return AtomicWriteResult::CannotCreate;
    }

    std::string temp = target.string() + ".tmpXXXXXX";
    int fd = ::mkstemp(temp.data());
    if (fd < 0)
        return AtomicWriteResult::CannotCreate;
    // A replaced file keeps its permissions; a new one is the owner's alone.
    ::fchmod(fd, exists ? (existing.st_mode & 07777) : (S_IRUSR | S_IWUSR));

    std::size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            ::close(fd);
            ::unlink(temp.c_str());
            return AtomicWriteResult::ShortWrite;
        }
        done += static_cast<std::size_t>(n);
    }
    if (::fsync(fd) != 0 || ::close(fd) != 0) {
        ::unlink(temp.c_str());
        return AtomicWriteResult::ShortWrite;
    }
    if (std::rename(temp.c_str(), target.c_str()) != 0) {
        ::unlink(temp.c_str());
        return AtomicWriteResult::CannotCreate;
    }
    return AtomicWriteResult::Ok;
}
