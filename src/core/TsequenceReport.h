#pragma once
// What the autosequence printout shows, as 8-bit Windows-1252 texts: the editor and
// kt930ctl build it the same way and hand it to the print layer.
#include "CategoryDescriptors.h"
#include "TInstrDatabase.h"
#include "Tautosequence.h"
#include <array>
#include <ctime>
#include <string>
#include <vector>

struct TsequenceReport {
    std::string date;   // "%B %d %Y - %X"
    std::string title1; // blanks on the right trimmed
    std::string title2;
    int port = 0; // 0 for an unused port
    int baudRate = 2400;
    // Per checkitem in sequence order: category text, op-code name, command (tabs as 0xBB).
    std::vector<std::array<std::string, 3>> rows;

    // Op-code names come from TInstrDatabase's name table; an op code it does not
    // know, or a number outside the table, leaves the cells it cannot fill empty.
    static TsequenceReport make(const Tautosequence &sequence, const TInstrDatabase &db,
                                const TcategoryMap &descriptors, std::time_t when);
    static std::string dateText(std::time_t when);
    // The three cells of checkitem index (from 0); empty for one outside the table.
    static std::array<std::string, 3> rowOf(const TInstrDatabase &db, std::uint32_t index,
                                            const TcategoryMap &descriptors);
};
