#include "TdataFolderCopy.h"
#include "AppDir.h"
#include "AtomicFile.h"
#include "RegularFile.h"
#include "TdataFolderLock.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {
const char *const SettingsFile = "KT930pc.ini";

bool inside(const fs::path &path, const fs::path &folder)
{
    auto [end, unused] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return end == folder.end();
}

// Why the target cannot take the copy; empty when it can.
std::string refusal(const fs::path &source, const fs::path &target)
{
    std::error_code fromEc, toEc, ec;
    const fs::path from = fs::weakly_canonical(source, fromEc), to = fs::weakly_canonical(target, toEc);
    if (fromEc || toEc)
        return (fromEc ? source : target).string() + " could not be examined: " + (fromEc ? fromEc : toEc).message() +
               ".";
    if (inside(to, from))
        return target.string() + " is the data folder in use or inside it. Choose a folder elsewhere.";
    const fs::file_status status = fs::symlink_status(target, ec);
    if (ec && ec != std::errc::no_such_file_or_directory)
        return target.string() + " could not be examined: " + ec.message() + ".";
    if (fs::is_symlink(status))
        return target.string() + " is a link. Choose a new folder or an empty one.";
    if (fs::exists(status) && (!fs::is_directory(status) || !fs::is_empty(target, ec) || ec))
        return target.string() + " already holds files. Choose a new folder or an empty one.";
    return {};
}

// In chunks: a huge stray file in the folder costs no memory. The staging folder is
// private until renamed, so the file is written in place.
bool copyFile(const fs::path &from, const fs::path &to, std::string &why)
{
    std::ifstream in;
    if (!openRegularFile(in, from)) {
        why = from.string() + " could not be read.";
        return false;
    }
    const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOCTTY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    bool written = out >= 0;
    std::vector<char> chunk(1 << 16);
    while (written && in) {
        in.read(chunk.data(), std::streamsize(chunk.size()));
        for (std::streamsize done = 0, count = in.gcount(); written && done < count;) {
            const ssize_t n = ::write(out, chunk.data() + done, std::size_t(count - done));
            if (n < 0 && errno == EINTR)
                continue;
            written = n > 0;
            done += n;
        }
    }
    written = written && ::fsync(out) == 0;
    if (out >= 0 && ::close(out) != 0)
        written = false;
    if (in.bad() || !written) {
        why = (in.bad() ? from : to).string() + (in.bad() ? " could not be read." : " could not be written.");
        return false;
    }
    return true;
}

// Regular files and real folders only: a link, a FIFO or a socket is not part of the data set.
bool copyFolder(const fs::path &from, const fs::path &to, std::string &why)
{
    if (::mkdir(to.c_str(), S_IRWXU) != 0) {
        why = to.string() + " could not be made.";
        return false;
    }
    std::error_code ec;
    for (fs::directory_iterator it(from, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        // Locks, restore points and half-saved files are the source's own.
        if (name.front() == '.')
            continue;
        const fs::file_status status = it->symlink_status(ec);
        if (ec)
            break;
        if (fs::is_directory(status) ? !copyFolder(it->path(), to / name, why)
                                     : fs::is_regular_file(status) && !copyFile(it->path(), to / name, why))
            return false;
    }
    if (ec) {
        why = from.string() + " could not be read: " + ec.message() + ".";
        return false;
    }
    return true;
}

bool copyInto(const fs::path &source, const fs::path &staging, std::string &why)
{
    const fs::path data = TappDir::dataFolder(source);
    const fs::path copiedData = staging / data.filename();
    if (!copyFolder(data, copiedData, why))
        return false;
    std::error_code ec;
    if (fs::exists(fs::symlink_status(source / SettingsFile, ec)) &&
        !copyFile(source / SettingsFile, staging / SettingsFile, why))
        return false;
    syncFolder(copiedData);
    syncFolder(staging);
    return true;
}
} // namespace

bool TdataFolderCopy::copy(const fs::path &source, const fs::path &target, std::string &why)
{
    why = refusal(source, target);
    if (!why.empty())
        return false;
    const fs::path absolute = fs::absolute(target).lexically_normal();
    const fs::path parent = (absolute.has_filename() ? absolute : absolute.parent_path()).parent_path();
    std::error_code ec;
    TappDir::createPrivateFolders(parent, ec);
    std::string staging = (parent / ".kt930-copy-XXXXXX").string();
    if (ec || ::mkdtemp(staging.data()) == nullptr) {
        why = "No folder can be made in " + parent.string() + ": " +
              (ec ? ec.message() : std::error_code(errno, std::generic_category()).message()) + ".";
        return false;
    }
    bool copied = false;
    {
        TdataFolderLock lock(TappDir::dataFolder(source), TdataFolderLock::Mode::Read);
        if (!lock.locked())
            why = lock.failure();
        else
            copied = copyInto(source, staging, why);
    }
    // rename() takes the place of an empty folder; one that filled meanwhile stays as it is.
    const fs::path made = absolute.has_filename() ? absolute : absolute.parent_path();
    if (copied && ::rename(staging.c_str(), made.c_str()) != 0) {
        why = made.string() + " could not take the copy: " + std::error_code(errno, std::generic_category()).message() +
              ".";
        copied = false;
    }
    if (!copied)
        fs::remove_all(staging, ec);
    else
        syncFolder(parent);
    return copied;
}
