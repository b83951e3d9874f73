#pragma once
#include "TcliCommand.h"

// kt930ctl export-csv FILE: every slot of Data/mit.dat as "c,o,command" lines.
class TexportCsvCommand : public TcliCommand {
public:
    std::string name() const override { return "export-csv"; }
    std::string summary() const override { return "write the whole checkitem table to a CSV file"; }
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::Read; }
};
