#pragma once
// The arguments after a subcommand's name: --appdir DIR, --help, flags, positionals.
#include <filesystem>
#include <set>
#include <string>
#include <vector>

struct TcliArguments {
    std::filesystem::path appDir; // KT930PC_APPDIR or the executable's folder unless --appdir
    std::set<std::string> flags;
    std::vector<std::string> positional;
    bool help = false;

    // False (with why) for an unknown option or a wrong number of positionals.
    bool parse(const std::vector<std::string> &arguments, const std::set<std::string> &knownFlags,
               std::size_t positionalCount, std::string &why);
    bool has(const std::string &flag) const { return flags.count(flag) != 0; }
};
