#pragma once
// Texts of the physical inspection list and the user tester tree, shared by the
// frame and the command-line tool.
#include "TTestProc.h"
#include "Tautosequence.h"
#include <string>

class TlistTexts {
public:
    static constexpr const char *UnusedText = "<unused>";

    // Lower-case Roman numeral for 1..38 ("x".."xxx" then "i".."ix"); "" outside.
    static std::string romanNumeral(int number);
    // Blanks and control characters removed from both ends.
    static std::string trim(const std::string &text);

    // "<unused>" or title 1 trimmed + " - " + title 2 trimmed.
    static std::string sequenceText(const Tautosequence &sequence);
    // List row of a physical inspection (its number is drawn separately).
    static std::string inspectionRow(const Tautosequence &sequence) { return sequenceText(sequence); }
    // Tree root of user tester index (from 0): numeral + ". " + name. A blank name
    // is first replaced in the tester by "USER TESTER <index + 1>".
    static std::string testerRoot(int index, TuserTester &tester);
    // The name a user tester gets from a rename: the typed text cleaned, in upper case.
    static std::string testerName(const std::string &typed);
    // List row of a checklist: "<unused>" or its title trimmed (its number is drawn separately).
    static std::string checklistRow(const TTestProc &checklist);
    // Tree child j (from 0): "<j + 1>. " + sequence text.
    static std::string testerChild(int index, const Tautosequence &sequence);
};
