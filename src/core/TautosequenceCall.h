#pragma once
// What an "A - Autosequence" checkitem runs, in words, for the checklist editor,
// its printout and kt930ctl: "Runs: Physical inspection 3 - EARTH BOND". Its command
// text starts with the type code (PHY, UT1 .. UT5) and a two-digit number.
#include "Tautosequence.h"
#include <string>
#include <vector>

class TautosequenceCall {
public:
    // The text for the command text of an "A" checkitem, the autosequence looked up in
    // the data set's containers: its titles trimmed and joined by " - ", "<unused>" for
    // an unused one, "(no such autosequence)" for a code or number the set does not have.
    static std::string runsText(const std::string &command, const std::vector<Tautosequence> &inspections,
                                const std::vector<TuserTester> &testers);
};
