#pragma once
#include "TcliCommand.h"

// kt930ctl restore-points: the copies kept of what downloads, syncs, imports and restores replaced.
class TrestorePointsCommand : public TcliCommand {
public:
    std::string name() const override { return "restore-points"; }
    std::string summary() const override { return "list the kept copies of replaced data files, newest first"; }
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::None; }
};
