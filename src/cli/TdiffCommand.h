#pragma once
// kt930ctl diff OTHER_FOLDER | --usb | --ethernet A.B.C.D | --serial N [--json]:
// what differs between the application folder's data set and another folder's or
// the analyzer's (read into memory; no file changes). Exits as diff(1) does.
#include "TcliCommand.h"

class TdiffCommand : public TcliCommand {
public:
    static constexpr int Same = 0, Different = 1, Trouble = 2;

    std::string name() const override { return "diff"; }
    std::string summary() const override;
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::Read; }
};
