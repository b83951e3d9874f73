#include "FolderPermissions.h"
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {
const char *const DataFileNames[] = {"mit.dat",         "catdes.dat",      "inspection.asq",  "usertester1.asq",
                                     "usertester2.asq", "usertester3.asq", "usertester4.asq", "usertester5.asq",
                                     "testProc.asq"};

void warnIfShared(const char *what, const fs::path &path, std::vector<std::string> &warnings)
{
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0 && (st.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        warnings.push_back(std::string(what) + " " + path.string() + " is writable by other users: run chmod go-w "
                           + path.string());
}
}

std::vector<std::string> permissionWarnings(const fs::path &dataFolder)
{
    std::vector<std::string> warnings;
    warnIfShared("Data folder", dataFolder, warnings);
    for (const char *name : DataFileNames)
        warnIfShared("Data file", dataFolder / name, warnings);
    return warnings;
}
