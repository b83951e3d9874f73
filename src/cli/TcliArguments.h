#pragma once
// The arguments after a subcommand's name: --appdir DIR, --help, flags, positionals.
#include "AppDir.h"
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

struct TcliArguments {
    std::filesystem::path appDir; // --appdir, else the application folder of TappDir; a reader of a
                                  // folder not seeded yet gets the shipped defaults' folder
    TappFolders folders;          // the folders in use; application is appDir
    bool appDirGiven = false;
    std::set<std::string> flags;
    std::map<std::string, std::string> options; // options that take a value, e.g. --serial 3
    std::vector<std::string> positional;
    bool help = false;

    // False (with why) for an unknown option or a wrong number of positionals.
    bool parse(const std::vector<std::string> &arguments, const std::set<std::string> &knownFlags,
               std::size_t positionalCount, std::string &why, const std::set<std::string> &valueOptions = {});
    // A number from 1 to count, as the frames count their rows; 0 when it is not one.
    static std::size_t oneBased(const std::string &text, std::size_t count);
    bool has(const std::string &flag) const { return flags.contains(flag) || options.contains(flag); }
};
