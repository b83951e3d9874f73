#pragma once
// The autosequence types of the "A - Autosequence" definition file: after its two
// header lines, one "code<tab>text<tab>count" line per type (PHY, UT1, ...). The
// parameter panel of "A" and the autosequence selector both offer them.
#include <filesystem>
#include <string>
#include <vector>

struct TautoSequenceType {
    std::string code; // three characters, the start of an "A" command text
    std::string text; // what the lists show
    int count = 0;    // numbers 1..count
    bool operator==(const TautoSequenceType &) const = default;
};

class TautoSequenceTypes {
public:
    // The type lines in order. False at the first line that is not three tab-separated
    // fields with a whole, non-negative count (types stays as far as it got).
    static bool parse(const std::vector<std::string> &lines, std::vector<TautoSequenceType> &types);
    // The types of the data folder's "A" definition file; false when there is no such
    // file or it cannot be read or parsed.
    static bool load(const std::filesystem::path &dataFolder, std::vector<TautoSequenceType> &types);
};
