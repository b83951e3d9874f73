#pragma once
// The texts of the inspection list and the user tester tree.
#include "Tautosequence.h"
#include <string>

class TlistTexts {
public:
    // Lower-case numeral for 1..38; "" outside.
    static std::string romanNumeral(int number);
    // "<unused>" for an unused autosequence, else "title1 - title2", both trimmed.
    static std::string inspectionRowText(const Tautosequence &sequence);
    // numeral of index+1 + ". " + name
    static std::string testerRootText(int index, const std::string &name);
    // j+1 + ". " + the row text
    static std::string sequenceChildText(int j, const Tautosequence &sequence);
    // "USER TESTER <index+1>" when the name is blank after trimming, else the name.
    static std::string repairedTesterName(int index, const std::string &name);
    static std::string trimmed(const std::string &text);
};
