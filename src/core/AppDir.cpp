#include "AppDir.h"
#include "AtomicFile.h"
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

// The install layout below the prefix; the build installs to the same places.
#ifndef KT930_INSTALL_SHAREDIR
#define KT930_INSTALL_SHAREDIR "share/kt930pc"
#endif
#ifndef KT930_INSTALL_PLUGINDIR
#define KT930_INSTALL_PLUGINDIR "lib/kt930pc/plugins"
#endif

namespace {
std::string variable(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

bool hasDataFolder(const fs::path &folder)
{
    std::error_code ec;
    return fs::is_directory(TappDir::dataFolder(folder), ec);
}

// An installed program sits in <prefix>/bin with its shared files in <prefix>/share/kt930pc.
fs::path installPrefix(const fs::path &executableFolder)
{
    std::error_code ec;
    fs::path prefix = executableFolder.parent_path();
    if (executableFolder.filename() == "bin" && fs::is_directory(prefix / KT930_INSTALL_SHAREDIR / "Data", ec))
        return prefix;
    return {};
}

fs::path makeStagingFolder(const fs::path &applicationFolder, std::error_code &ec)
{
    std::string name = (applicationFolder / "Data.seed-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        ec.assign(errno, std::generic_category());
        return {};
    }
    return name;
}

void syncFile(const fs::path &file, std::error_code &ec)
{
    const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0 || ::fsync(fd) != 0)
        ec.assign(errno, std::generic_category());
    if (fd >= 0)
        ::close(fd);
}

void syncFolderOrFail(const fs::path &folder, std::error_code &ec)
{
    if (!syncFolder(folder))
        ec.assign(errno, std::generic_category());
}

// Shipped files are read-only and may be readable by all; the user's copies are
// the user's own and writable, and on disk before they get their final name.
void copyPrivately(const fs::path &from, const fs::path &to, std::error_code &ec)
{
    for (auto it = fs::recursive_directory_iterator(from, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec)) {
        const fs::path copy = to / it->path().lexically_relative(from);
        if (it->is_directory(ec)) {
            if (::mkdir(copy.c_str(), S_IRWXU) != 0)
                ec.assign(errno, std::generic_category());
        } else if (fs::copy_file(it->path(), copy, ec)) {
            fs::permissions(copy, fs::perms::owner_read | fs::perms::owner_write, ec);
            if (!ec)
                syncFile(copy, ec);
        }
    }
    for (auto it = fs::recursive_directory_iterator(to, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec))
        if (it->is_directory(ec))
            syncFolderOrFail(it->path(), ec);
    if (!ec)
        syncFolderOrFail(to, ec);
}

// False when the folder is there already: another program made it meanwhile.
bool renameIntoPlace(const fs::path &from, const fs::path &to, std::error_code &ec)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno == EEXIST || errno == ENOTEMPTY)
        return false;
    ec.assign(errno, std::generic_category());
    return true;
}
} // namespace

TappEnvironment TappEnvironment::current()
{
    TappEnvironment environment;
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    environment.executableFolder = ec ? fs::current_path() : exe.parent_path();
    environment.appDirOverride = variable("KT930PC_APPDIR");
    environment.xdgDataHome = variable("XDG_DATA_HOME");
    environment.home = variable("HOME");
    environment.openedFolder = variable(TappDir::OpenedFolderVariable);
    environment.xdgConfigHome = variable("XDG_CONFIG_HOME");
    return environment;
}

TappFolders TappDir::resolve(const TappEnvironment &environment)
{
    const fs::path exeDir = environment.executableFolder;
    const fs::path prefix = installPrefix(exeDir);
    TappFolders folders;
    if (!environment.appDirOverride.empty()) {
        folders.application = environment.appDirOverride;
        folders.reason = "KT930PC_APPDIR is set";
    } else if (hasDataFolder(exeDir) && ::access(exeDir.c_str(), W_OK) == 0) {
        folders.application = exeDir;
        folders.reason = "the program's folder holds Data/ and is writable (a build folder or a portable copy)";
    } else if (!prefix.empty() && fs::path(environment.xdgDataHome).is_absolute()) {
        folders.application = fs::path(environment.xdgDataHome) / "kt930pc";
        folders.reason = "the program is installed: the per-user data folder in $XDG_DATA_HOME";
    } else if (!prefix.empty() && !environment.home.empty()) {
        folders.application = fs::path(environment.home) / ".local/share/kt930pc";
        folders.reason = "the program is installed: the per-user data folder in ~/.local/share";
    } else {
        folders.application = exeDir;
        folders.reason = "the program's folder";
    }
    if (prefix.empty()) {
        folders.plugins = folders.application / "Plugins";
        folders.help = folders.application;
    } else {
        folders.plugins = prefix / KT930_INSTALL_PLUGINDIR;
        folders.help = prefix / KT930_INSTALL_SHAREDIR;
        folders.defaults = prefix / KT930_INSTALL_SHAREDIR / "Data";
    }
    if (fs::path(environment.xdgConfigHome).is_absolute())
        folders.hostSettings = fs::path(environment.xdgConfigHome) / "kt930pc";
    else if (!environment.home.empty())
        folders.hostSettings = fs::path(environment.home) / ".config/kt930pc";
    if (!environment.openedFolder.empty()) {
        folders.application = environment.openedFolder;
        folders.reason = "it was opened in kt930pc (File > Open Data Folder)";
    }
    return folders;
}

fs::path TappDir::dataFolder(const fs::path &appDir)
{
    std::error_code ec;
    if (!fs::is_directory(appDir / "Data", ec) && fs::is_directory(appDir / "data", ec))
        return appDir / "data";
    return appDir / "Data";
}

// The user's data is the user's alone: folders the program makes are 0700.
void TappDir::createPrivateFolders(const fs::path &folder, std::error_code &ec)
{
    fs::path made;
    for (const fs::path &part : folder) {
        made /= part;
        struct stat st {};
        if (::stat(made.c_str(), &st) == 0)
            continue;
        if (::mkdir(made.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
            ec.assign(errno, std::generic_category());
            return;
        }
    }
    if (!fs::is_directory(folder, ec) && !ec)
        ec = std::make_error_code(std::errc::not_a_directory);
}

TappDir::Seeding TappDir::seed(const TappFolders &folders, std::string &message)
{
    message.clear();
    if (folders.defaults.empty() || hasDataFolder(folders.application))
        return Seeding::Present;
    const fs::path target = folders.application / "Data";
    // Copied into a folder of a name of its own, so a failed copy never looks like a
    // data set and programs seeding at the same time never share a half-made folder.
    std::error_code ec;
    createPrivateFolders(folders.application, ec);
    fs::path staging;
    if (!ec)
        staging = makeStagingFolder(folders.application, ec);
    if (!ec)
        copyPrivately(folders.defaults, staging, ec);
    bool lost = false;
    if (!ec)
        lost = !renameIntoPlace(staging, target, ec);
    if (ec || lost) {
        std::error_code ignored;
        if (!staging.empty())
            fs::remove_all(staging, ignored);
    }
    if (lost)
        return Seeding::Present; // another program seeded it first: theirs is the data set
    if (ec) {
        message = "The data folder " + target.string() + " could not be created from " + folders.defaults.string() +
                  ": " + ec.message() + ".";
        return Seeding::Failed;
    }
    syncFolder(folders.application);
    message = "Your data folder " + folders.application.string() +
              " was created from the shipped defaults. Your checkitems, sequences and settings are kept there.";
    return Seeding::Created;
}
