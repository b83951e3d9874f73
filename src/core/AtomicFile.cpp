#include "AtomicFile.h"
#include "TrustedLinks.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
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

// A save killed in the instant between naming its finished temporary file and the
// rename leaves "<name>.tmpXXXXXX" behind (no reader takes such a name for data).
// The next save of the same file removes it.
void removeLeftovers(const fs::path &target)
{
    const std::string prefix = target.filename().string() + ".tmp";
    std::error_code ec;
    for (fs::directory_iterator it(target.parent_path().empty() ? "." : target.parent_path(), ec), end;
         !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (name.size() == prefix.size() + 6 && name.compare(0, prefix.size(), prefix) == 0)
            fs::remove(it->path(), ec);
    }
}

// The new content is written into a file without a name (O_TMPFILE), so a save
// killed while writing leaves nothing. -1 where the file system has no such files.
int openUnnamed(const fs::path &target)
{
    const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
    return ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
}

// Gives the unnamed file a temporary name beside the target; false when it cannot.
bool nameUnnamed(int fd, const fs::path &target, std::string &temp)
{
    static std::mt19937 random{std::random_device{}()};
    static const char letters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    const std::string self = "/proc/self/fd/" + std::to_string(fd);
    for (int attempt = 0; attempt < 100; ++attempt) {
        temp = target.string() + ".tmp";
        for (int i = 0; i < 6; ++i)
            temp += letters[random() % (sizeof letters - 1)];
        if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, temp.c_str(), AT_SYMLINK_FOLLOW) == 0)
            return true;
        if (errno != EEXIST)
            return false;
    }
    return false;
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
    const bool given = ::fchown(fd, old.st_uid, old.st_gid) == 0
        || ::fchown(fd, static_cast<uid_t>(-1), old.st_gid) == 0;
    static_cast<void>(given); // neither allowed: the saver keeps it
    // After fchown, which may clear set-id bits.
    ::fchmod(fd, old.st_mode & 07777);
}
}

AtomicWriteResult stageFile(const fs::path &requested, std::string_view bytes, TstagedFile &staged,
                            InPlaceWrites inPlace)
{
    staged = {};
    // The kernel follows the links here, also the ones of /proc such as
    // /dev/stdout, whose text names no file.
    struct stat existing {};
    const bool exists = ::stat(requested.c_str(), &existing) == 0;
    if (exists && !S_ISREG(existing.st_mode))
        return inPlace == InPlaceWrites::Allowed ? writeInPlace(requested, bytes) : AtomicWriteResult::CannotCreate;
    fs::path target;
    if (!resolveTrustedLinks(requested, target))
        return AtomicWriteResult::CannotCreate;
    // An existing file that we may not write stays as it is. For root, whom
    // access() never refuses, the owner's write bit decides.
    if (exists) {
        const bool writable = ::geteuid() == 0 ? (existing.st_mode & S_IWUSR) != 0 : ::access(target.c_str(), W_OK) == 0;
        if (!writable)
            return AtomicWriteResult::CannotCreate;
    }

    removeLeftovers(target);
    std::string temp;
    int fd = openUnnamed(target);
    const bool unnamed = fd >= 0;
    if (!unnamed) {
        temp = target.string() + ".tmpXXXXXX";
        fd = ::mkstemp(temp.data());
    }
    if (fd < 0)
        return AtomicWriteResult::CannotCreate;
    if (exists)
        keepOwnership(fd, existing);
    else
        ::fchmod(fd, S_IRUSR | S_IWUSR);

    auto discard = [&](AtomicWriteResult result) {
        ::close(fd);
        if (!temp.empty())
            ::unlink(temp.c_str());
        return result;
    };
    if (!writeAll(fd, bytes))
        return discard(AtomicWriteResult::ShortWrite);
    if (::fsync(fd) != 0)
        return discard(AtomicWriteResult::ShortWrite);
    if (unnamed && !nameUnnamed(fd, target, temp))
        return discard(AtomicWriteResult::CannotCreate);
    if (::close(fd) != 0) {
        ::unlink(temp.c_str());
        return AtomicWriteResult::ShortWrite;
    }
    staged.temp = temp;
    staged.target = target;
    return AtomicWriteResult::Ok;
}

bool commitStagedFile(const TstagedFile &staged)
{
    if (staged.temp.empty())
        return true; // written in place
    if (std::rename(staged.temp.c_str(), staged.target.c_str()) != 0) {
        ::unlink(staged.temp.c_str());
        return false;
    }
    return true;
}

void discardStagedFile(const TstagedFile &staged)
{
    if (!staged.temp.empty())
        ::unlink(staged.temp.c_str());
}

bool syncFolder(const fs::path &folder)
{
    int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

AtomicWriteResult writeFileAtomically(const fs::path &requested, std::string_view bytes, InPlaceWrites inPlace)
{
    TstagedFile staged;
    const AtomicWriteResult result = stageFile(requested, bytes, staged, inPlace);
    if (result != AtomicWriteResult::Ok)
        return result;
    if (!commitStagedFile(staged))
        return AtomicWriteResult::CannotCreate;
    // A power cut must not undo a save the user saw complete.
    if (!staged.temp.empty())
        syncFolder(staged.target.parent_path());
    return AtomicWriteResult::Ok;
}
