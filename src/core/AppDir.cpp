#include "AppDir.h"
#include <cstdlib>
#include <system_error>

namespace fs = std::filesystem;

fs::path TappDir::applicationFolder()
{
    if (const char *env = std::getenv("KT930PC_APPDIR"); env && *env)
        return fs::path(env);
    std::error_code ec;
    fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    return ec ? fs::current_path() : exe.parent_path();
}

fs::path TappDir::dataFolder(const fs::path &appDir)
{
    std::error_code ec;
    if (!fs::is_directory(appDir / "Data", ec) && fs::is_directory(appDir / "data", ec))
        return appDir / "data";
    return appDir / "Data";
}
