#include "AppDir.h"
#include <cstdlib>
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
    const fs::path prefix = executableFolder.parent_path();
    if (executableFolder.filename() == "bin" && fs::is_directory(prefix / KT930_INSTALL_SHAREDIR / "Data", ec))
        return prefix;
    return {};
}
}

TappEnvironment TappEnvironment::current()
{
    TappEnvironment environment;
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    environment.executableFolder = ec ? fs::current_path() : exe.parent_path();
    environment.appDirOverride = variable("KT930PC_APPDIR");
    environment.xdgDataHome = variable("XDG_DATA_HOME");
    environment.home = variable("HOME");
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
    return folders;
}

fs::path TappDir::dataFolder(const fs::path &appDir)
{
    std::error_code ec;
    if (!fs::is_directory(appDir / "Data", ec) && fs::is_directory(appDir / "data", ec))
        return appDir / "data";
    return appDir / "Data";
}

TappDir::Seeding TappDir::seed(const TappFolders &folders, std::string &message)
{
    message.clear();
    if (folders.defaults.empty() || hasDataFolder(folders.application))
        return Seeding::Present;
    std::error_code ec;
    const fs::path target = folders.application / "Data";
    // Copied under another name first, so a failed copy never looks like a data set.
    const fs::path partial = folders.application / "Data.partial";
    fs::remove_all(partial, ec);
    fs::create_directories(folders.application, ec);
    if (!ec)
        fs::copy(folders.defaults, partial, fs::copy_options::recursive, ec);
    if (!ec) {
        // Shipped files are read-only; the user's copies must be writable.
        fs::permissions(partial, fs::perms::owner_all, fs::perm_options::add, ec);
        for (auto it = fs::recursive_directory_iterator(partial, ec); !ec && it != fs::recursive_directory_iterator();
             it.increment(ec))
            fs::permissions(it->path(), fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add, ec);
    }
    if (!ec)
        fs::rename(partial, target, ec);
    if (ec) {
        std::error_code ignored;
        fs::remove_all(partial, ignored);
        message = "The data folder " + target.string() + " could not be created from " + folders.defaults.string()
            + ": " + ec.message() + ".";
        return Seeding::Failed;
    }
    message = "Your data folder " + folders.application.string()
        + " was created from the shipped defaults. Your checkitems, sequences and settings are kept there.";
    return Seeding::Created;
}
