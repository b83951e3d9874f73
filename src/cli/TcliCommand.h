#pragma once
// One kt930ctl subcommand. Exit codes: 0 success, 1 failure, 2 bad command line.
#include <optional>
#include <set>
#include <string>
#include <vector>

struct TcliArguments;

class TcliCommand {
public:
    virtual ~TcliCommand() = default;
    virtual std::string name() const = 0;
    virtual std::string summary() const = 0; // one line for the overview
    virtual std::string usage() const = 0;   // the subcommand's --help text
    virtual int run(const std::vector<std::string> &arguments) = 0;

protected:
    // What the command does with the data set. Only a writer gets a new per-user folder
    // made for it; a reader creates nothing and, until that folder exists, reads the
    // shipped defaults.
    enum class DataAccess { None, Read, Write };
    virtual DataAccess dataAccess() const { return DataAccess::Write; }
    // Parses the arguments into args. On a bad command line (usage on stderr, 2) or
    // --help (usage on stdout, 0) it returns the exit code to end with.
    std::optional<int> parseArguments(const std::vector<std::string> &arguments, TcliArguments &args,
                                      const std::set<std::string> &flags, std::size_t positionalCount,
                                      const std::set<std::string> &valueOptions = {}) const;
};
