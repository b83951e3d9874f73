#pragma once
#include "TcliCommand.h"

// kt930ctl listing --pdf FILE: the checkitem listing, as the editor prints it in its
// first order, written to a PDF file without a display.
class TlistingCommand : public TcliCommand {
public:
    std::string name() const override { return "listing"; }
    std::string summary() const override { return "print the checkitem listing to a PDF file"; }
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::Read; }
};
