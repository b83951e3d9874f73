#include "TrestoreCommand.h"
#include "TcliArguments.h"
#include "TdataFolderLock.h"
#include "TrestorePoints.h"
#include <charconv>
#include <iostream>

std::string TrestoreCommand::usage() const
{
    return "Usage: kt930ctl restore N [--appdir DIR]\n"
           "Puts the files of restore point N (as kt930ctl restore-points lists them) back into\n"
           "DIR/Data as one save. The files it replaces are kept as restore point 1 first, so\n"
           "kt930ctl restore 1 undoes it.\n"
           "  --appdir DIR   application folder (default: as kt930ctl where says)\n";
}

int TrestoreCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode = parseArguments(arguments, args, {}, 1))
        return *exitCode;
    const std::string &text = args.positional[0];
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        std::cerr << "kt930ctl restore: \"" << text << "\" is not a restore point number\n" << usage();
        return 2;
    }
    const std::filesystem::path dataFolder = TappDir::dataFolder(args.appDir);
    // Held across the listing and the restore, so the number still means what it was read as.
    TdataFolderLock lock(dataFolder);
    if (!lock.locked()) {
        std::cerr << "kt930ctl restore: " << lock.failure() << "\n";
        return 1;
    }
    TrestorePoints points(dataFolder);
    const std::vector<TrestorePoint> listed = points.list();
    std::string why;
    if (!points.restore(number, why)) {
        std::cerr << "kt930ctl restore: " << why << "\n";
        return 1;
    }
    const TrestorePoint &point = listed[std::size_t(number - 1)];
    std::cout << "Restored from restore point " << number << " (" << point.time << ", replaced by " << point.action
              << "):";
    for (const std::string &file : point.files)
        std::cout << " " << file;
    std::cout << "\nThe files this replaced are now restore point 1; kt930ctl restore 1 undoes this.\n";
    return 0;
}
