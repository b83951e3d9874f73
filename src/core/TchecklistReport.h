#pragma once
// What the checklist printout shows, as 8-bit Windows-1252 texts: the checklist
// editor and kt930ctl build it the same way and hand it to the print layer.
#include "CategoryDescriptors.h"
#include "TInstrDatabase.h"
#include "TTestProc.h"
#include "Tautosequence.h"
#include <array>
#include <ctime>
#include <string>
#include <vector>

struct TchecklistReport {
    std::string date;  // as the autosequence printout dates its page
    std::string title; // trimmed
    // Per step: category text, op-code name, command; an "A" step names what it runs.
    std::vector<std::array<std::string, 3>> rows;

    static TchecklistReport make(const TTestProc &checklist, const TInstrDatabase &db, const TcategoryMap &descriptors,
                                 const std::vector<Tautosequence> &inspections, const std::vector<TuserTester> &testers,
                                 std::time_t when);
};
