#include "TwhereCommand.h"
#include "TcliArguments.h"
#include "TrecentFolders.h"
#include <iostream>

namespace {
std::string existing(const std::filesystem::path &path)
{
    std::error_code ec;
    return path.string() + (std::filesystem::exists(path, ec) ? "" : " (not there yet)");
}
} // namespace

std::string TwhereCommand::summary() const
{
    return "print the folders in use (data, settings, plug-ins, help) and why, and the recent folders";
}

std::string TwhereCommand::usage() const
{
    return "Usage: kt930ctl where [--appdir DIR]\n"
           "Prints the application folder and why it was chosen, then its data folder and\n"
           "settings file, the plug-in and help folders and the shipped defaults.\n"
           "The application folder is KT930PC_APPDIR when set; else the program's folder when it\n"
           "holds Data/ and is writable (a build folder or a portable copy); else, when installed,\n"
           "$XDG_DATA_HOME/kt930pc (default ~/.local/share/kt930pc), made on first use from the\n"
           "shipped defaults. A folder opened in kt930pc is the application folder of that host.\n"
           "Then the folders kt930pc worked on last, if any.\n"
           "  --appdir DIR   application folder to report on instead\n";
}

int TwhereCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode = parseArguments(arguments, args, {}, 0))
        return *exitCode;
    const TappFolders &folders = args.folders;
    std::cout << "application folder: " << existing(folders.application) << "\n"
              << "  because " << folders.reason << "\n"
              << "data folder:        " << existing(TappDir::dataFolder(folders.application)) << "\n"
              << "settings file:      " << existing(folders.application / "KT930pc.ini") << "\n"
              << "plug-ins:           " << existing(folders.plugins) << "\n"
              << "help files:         " << existing(folders.help) << "\n"
              << "shipped defaults:   "
              << (folders.defaults.empty() ? std::string("none (not installed)") : existing(folders.defaults)) << "\n";
    const TrecentFolders recent(folders.hostSettings);
    std::error_code ec;
    if (!recent.folders().empty())
        std::cout << "recent folders (newest first, from " << recent.file().string() << "):\n";
    for (const std::filesystem::path &folder : recent.folders())
        std::cout << "  " << folder.string() << (std::filesystem::exists(folder, ec) ? "" : " (not there)") << "\n";
    return 0;
}
