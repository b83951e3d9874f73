#pragma once
#include "TcliCommand.h"

// kt930ctl print-checklist: one checklist, or every used one, printed as the
// checklist editor prints it, to a PDF file without a display.
class TprintChecklistCommand : public TcliCommand {
public:
    std::string name() const override { return "print-checklist"; }
    std::string summary() const override { return "print checklists to a PDF file"; }
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::Read; }
};
