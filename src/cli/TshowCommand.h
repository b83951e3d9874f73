#pragma once
#include "TcliCommand.h"

// kt930ctl show [--fields] [--json]: the data set as the frame loads and lists it.
class TshowCommand : public TcliCommand {
public:
    std::string name() const override { return "show"; }
    std::string summary() const override;
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::Read; }
};
