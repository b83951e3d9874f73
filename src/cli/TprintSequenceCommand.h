#pragma once
#include "TcliCommand.h"

// kt930ctl print-sequence: one autosequence, or every used one as a binder, printed
// as the sequence editor prints it, to a PDF file without a display.
class TprintSequenceCommand : public TcliCommand {
public:
    std::string name() const override { return "print-sequence"; }
    std::string summary() const override { return "print autosequences to a PDF file"; }
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

protected:
    DataAccess dataAccess() const override { return DataAccess::Read; }
};
