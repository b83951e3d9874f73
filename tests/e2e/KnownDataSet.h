#pragma once
// A data set whose every record is known from a seed: the analyzer's memory bytes laid out by hand from the
// documented block layouts, and the PC-side containers read from them. The records are clean, so an upload of
// the containers sends the same bytes back. Every used checkitem has an op code of the demo definition files.
#include "TdataSet.h"
#include <string>

struct KnownImages {
    std::string checkitems, autosequences, checklists; // 45936, 7128 and 132000 bytes
    // The simulator's memory file: the three back to back.
    std::string memoryFile() const { return checkitems + autosequences + checklists; }
    static KnownImages fromMemoryFile(const std::string &bytes);
};

struct KnownDataSet {
    static KnownImages images(int seed);
    static void fill(TdataSet &set, int seed) { fill(set, images(seed)); }
    static void fill(TdataSet &set, const KnownImages &known);
    // Every byte of the containers (record by record) and the tester names, for equality checks.
    static std::string snapshot(const TdataSet &set);
};
