#pragma once
// Command line of kt930sim.
#include "AppDir.h"
#include "TsimFaults.h"
#include <filesystem>
#include <string>

struct TsimOptions {
    std::string listenAddress;      // empty: no TCP
    int listenPort = 0;
    std::filesystem::path ptyLink;  // empty: no pseudo-terminal
    std::filesystem::path memoryFile;
    std::filesystem::path appDir;
    TappFolders folders; // resolved when no --appdir is given
    int baud = 0;                   // 0: as fast as the link goes
    int putTimeoutMs = 5000;
    TsimFaults faults;
    bool help = false;

    // False (with why) on a bad command line.
    bool parse(int argc, char **argv, std::string &why);
    static std::string usage();
};
