#pragma once
// What an "A - Autosequence" checkitem runs, in words, for the checklist editor,
// its printout and kt930ctl: "Runs: Physical inspection 3 - EARTH BOND". Its command
// text is the three-character type code (PHY, UT1 .. UT5) and the number as the panel
// writes it: at least two digits ("PHY03", "PHY120"), then blanks only.
#include "Tautosequence.h"
#include <string>
#include <vector>

class TautosequenceCall {
public:
    struct Call {
        std::string code;       // the first three characters
        std::string numberText; // the rest, trailing blanks dropped
        int number = 0;         // 0 when numberText is not a number as the panel writes it
    };
    // The one reading of an "A" command text; kt930ctl's field names and the step texts
    // both go through it so that they agree.
    static Call parse(const std::string &command);
    // The text for the command text of an "A" checkitem, the autosequence looked up in
    // the data set's containers: its titles trimmed and joined by " - ", "<unused>" for
    // an unused one, "(no such autosequence)" for a code or number the set does not have.
    static std::string runsText(const std::string &command, const std::vector<Tautosequence> &inspections,
                                const std::vector<TuserTester> &testers);
};
