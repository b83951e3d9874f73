#pragma once
// One kt930ctl subcommand. Exit codes: 0 success, 1 failure, 2 bad command line.
#include <string>
#include <vector>

class TcliCommand {
public:
    virtual ~TcliCommand() = default;
    virtual std::string name() const = 0;
    virtual std::string summary() const = 0; // one line for the overview
    virtual std::string usage() const = 0;   // the subcommand's --help text
    virtual int run(const std::vector<std::string> &arguments) = 0;
};
