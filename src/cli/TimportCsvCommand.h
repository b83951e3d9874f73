#pragma once
#include "TcliCommand.h"

// kt930ctl import-csv FILE: adds the file's checkitems to free slots and saves Data/mit.dat.
class TimportCsvCommand : public TcliCommand {
public:
    std::string name() const override { return "import-csv"; }
    std::string summary() const override { return "add the checkitems of a CSV file to the checkitem table"; }
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

    static std::string importErrorText(int code);
    static const char *overflowText();
};
