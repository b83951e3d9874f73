#pragma once
#include "TcliCommand.h"

// kt930ctl where: the folders every program of this installation works with, and why.
class TwhereCommand : public TcliCommand {
public:
    std::string name() const override { return "where"; }
    std::string summary() const override;
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::None; }
};
