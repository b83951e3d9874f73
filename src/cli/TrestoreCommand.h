#pragma once
#include "TcliCommand.h"

// kt930ctl restore N: puts restore point N back, keeping what it replaces as a new one.
class TrestoreCommand : public TcliCommand {
public:
    std::string name() const override { return "restore"; }
    std::string summary() const override { return "put the files of a restore point back (undoable)"; }
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::None; }
};
