#include "TrestorePointsCommand.h"
#include "TcliArguments.h"
#include "TrestorePoints.h"
#include <cstdio>
#include <iostream>

std::string TrestorePointsCommand::usage() const
{
    return "Usage: kt930ctl restore-points [--appdir DIR]\n"
           "Lists the restore points of DIR/Data, newest first: number, time, the action that\n"
           "replaced the files, and the files kept. A download, a sync, an import and a restore\n"
           "each keep one; the last 20 are kept. kt930ctl restore N puts one back.\n"
           "  --appdir DIR   application folder (default: as kt930ctl where says)\n";
}

int TrestorePointsCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode = parseArguments(arguments, args, {}, 0))
        return *exitCode;
    const std::filesystem::path dataFolder = TappDir::dataFolder(args.appDir);
    const std::vector<TrestorePoint> points = TrestorePoints(dataFolder).list();
    if (points.empty()) {
        std::cout << "There are no restore points in " << dataFolder.string() << ".\n";
        return 0;
    }
    for (const TrestorePoint &point : points) {
        char number[16];
        std::snprintf(number, sizeof number, "%3d", point.number);
        std::string files;
        for (const std::string &file : point.files)
            files += (files.empty() ? "" : " ") + file;
        std::cout << number << "  " << point.time << "  " << point.action << "  " << (files.empty() ? "(no files)" : files)
                  << "\n";
    }
    return 0;
}
