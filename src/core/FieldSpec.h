#pragma once
// One parameter field line of a Data/*.in file: "left"<TAB>"right"<TAB>"T" or "N0,10".
#include <stdexcept>
#include <string>
#include <vector>

struct TInstrPanelError : std::runtime_error {
    // Out of line: the plug-in exports the panel that throws it, and nothing else.
    TInstrPanelError(int code, const char *file, int line);
    int code;
    std::string file;
    int line;
};

struct TdataInfo {
    bool hasRange = false;
    double minimum = 0;
    double maximum = 0;
};

struct TfieldSpec {
    enum TypeTag { FreeText = 0, WholeNumber = 1, DecimalNumber = 2, UpperCaseText = 3 };
    std::string leftLabel;
    std::string rightLabel;
    char typeLetter = 'A'; // 'A', 'N', 'F' or 'U'
    int typeTag = 0;       // 0 text, 1 whole number, 2 decimal, 3 upper case
    TdataInfo range;

    // Throws TInstrPanelError code 6 when the line breaks the grammar.
    static TfieldSpec parse(const std::string &line);
    // The range of a quoted type specification such as "N+5,10" (quotes included);
    // false when it has none or breaks the grammar of a range.
    static bool readRange(const std::string &typeSpec, TdataInfo &range);
    // The parts between tabs: a field line's tokens, a command text's values.
    static std::vector<std::string> splitAtTabs(const std::string &text);
};
