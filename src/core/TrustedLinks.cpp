#include "TrustedLinks.h"
#include <deque>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
// The kernel gives up after 40 links in a row; so do we.
constexpr int MaxLinkHops = 40;

bool mayFollow(const struct stat &link, const fs::path &folder)
{
    if (link.st_uid == ::geteuid())
        return true;
    struct stat holder {};
    return ::stat(folder.c_str(), &holder) == 0 && holder.st_uid == link.st_uid;
}

bool readLink(const fs::path &link, const struct stat &st, std::string &text)
{
    text.assign(static_cast<std::size_t>(st.st_size > 0 ? st.st_size : 255) + 1, '\0');
    const ssize_t n = ::readlink(link.c_str(), text.data(), text.size());
    if (n < 0 || static_cast<std::size_t>(n) >= text.size())
        return false;
    text.resize(static_cast<std::size_t>(n));
    return true;
}
}

bool resolveTrustedLinks(const fs::path &path, fs::path &resolved)
{
    std::error_code ec;
    // The working folder comes back from the kernel with its links already resolved.
    fs::path done = path.is_absolute() ? fs::path("/") : fs::current_path(ec);
    if (ec)
        return false;
    const fs::path relative = path.relative_path();
    std::deque<fs::path> rest(relative.begin(), relative.end());
    int hops = 0;
    while (!rest.empty()) {
        const fs::path part = rest.front();
        rest.pop_front();
        if (part.empty() || part == ".")
            continue;
        if (part == "..") {
            done = done.parent_path(); // done holds no links, so this is the real parent
            continue;
        }
        const fs::path next = done / part;
        struct stat st {};
        if (::lstat(next.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) {
            done = next;
            continue;
        }
        std::string text;
        if (++hops > MaxLinkHops || !mayFollow(st, done) || !readLink(next, st, text))
            return false;
        const fs::path target(text);
        if (target.is_absolute())
            done = "/";
        const fs::path targetParts = target.relative_path();
        rest.insert(rest.begin(), targetParts.begin(), targetParts.end());
    }
    resolved = done;
    return true;
}
