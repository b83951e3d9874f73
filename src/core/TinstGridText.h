#pragma once
// The texts of one row of the checkitem editor's grid (8-bit Windows-1252), shared
// by the editor and the printed listing.
#include "CategoryDescriptors.h"
#include "TInstrDatabase.h"
#include <array>
#include <cstdint>
#include <string>

class TinstGridText {
public:
    static const std::array<std::string, 4> &header(); // "No.", "Category", "Op Code", "Command"
    // Number index + 1, the category display text, the op-code name (nameOf), the
    // command text with each tab among its first 43 characters shown as 0xBB.
    static std::array<std::string, 4> row(const TInstrDatabase &db, std::uint32_t index,
                                          const TcategoryMap &descriptors);
    // As row, but an op code without a definition file shows no name instead of
    // failing: the editors list such a checkitem (and repair it when it is opened).
    static std::array<std::string, 4> rowForEditor(const TInstrDatabase &db, std::uint32_t index,
                                                   const TcategoryMap &descriptors);
    // The command text as the grid shows it (tabs among the first 43 characters as 0xBB);
    // empty for a free slot.
    static std::string command(const TInstr &record);
};
