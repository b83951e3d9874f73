#include "AtomicFile.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
// The kernel gives up after 40 links in a row; so do we.
constexpr int MaxLinkHops = 40;

// The path a write through `target` would reach: symbolic links in the last
// component are followed, also when the final file does not exist yet.
// Returns false for a loop of links.
bool resolveLinks(fs::path target, fs::path &resolved)
{
    for (int hop = 0; hop <= MaxLinkHops; ++hop) {
        struct stat st {};
        if (::lstat(target.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) {
            resolved = target;
            return true;
        }
        std::string link(static_cast<std::size_t>(st.st_size > 0 ? st.st_size : 255) + 1, '\0');
        ssize_t n = ::readlink(target.c_str(), link.data(), link.size());
        if (n < 0 || static_cast<std::size_t>(n) >= link.size())
            return false;
        link.resize(static_cast<std::size_t>(n));
        fs::path next(link);
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return false;
}

bool writeAll(int fd, std::string_view bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

// A FIFO, terminal or device cannot be replaced by a file: it gets the bytes
// itself. A folder or a socket fails to open and is refused.
AtomicWriteResult writeInPlace(const fs::path &target, std::string_view bytes)
{
    int fd = ::open(target.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return AtomicWriteResult::CannotCreate;
    const bool written = writeAll(fd, bytes);
    const bool closed = ::close(fd) == 0;
    return written && closed ? AtomicWriteResult::Ok : AtomicWriteResult::ShortWrite;
}

// The new file takes over the old one's owner, group and mode. Only root may
// give a file away; anyone may keep the group when they belong to it. Where
// neither is allowed the file belongs to whoever saves it.
void keepOwnership(int fd, const struct stat &old)
{
    if (::fchown(fd, old.st_uid, old.st_gid) != 0)
        (void)::fchown(fd, static_cast<uid_t>(-1), old.st_gid);
    // After fchown, which may clear set-id bits.
    ::fchmod(fd, old.st_mode & 07777);
}
}

AtomicWriteResult writeFileAtomically(const fs::path &requested, std::string_view bytes)
{
    // The kernel follows the links here, also the ones of /proc such as
    // /dev/stdout, whose text names no file.
    struct stat existing {};
    const bool exists = ::stat(requested.c_str(), &existing) == 0;
    if (exists && !S_ISREG(existing.st_mode))
        return writeInPlace(requested, bytes);
    fs::path target;
    if (!resolveLinks(requested, target))
        return AtomicWriteResult::CannotCreate;
    // An existing file that we may not write stays as it is. For root, whom
    // access() never refuses, the owner's write bit decides.
    if (exists) {
        const bool writable = ::geteuid() == 0 ? (existing.st_mode & S_IWUSR) != 0 : ::access(target.c_str(), W_OK) == 0;
        if (!writable)
            return AtomicWriteResult::CannotCreate;
    }

    std::string temp = target.string() + ".tmpXXXXXX";
    int fd = ::mkstemp(temp.data());
    if (fd < 0)
        return AtomicWriteResult::CannotCreate;
    if (exists)
        keepOwnership(fd, existing);
    else
        ::fchmod(fd, S_IRUSR | S_IWUSR);

    if (!writeAll(fd, bytes)) {
        ::close(fd);
        ::unlink(temp.c_str());
        return AtomicWriteResult::ShortWrite;
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
