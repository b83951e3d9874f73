#pragma once
// Data-set containers, and analyzer autosequence records built from the documented layout.
#include "TtransferRecord.h"
#include "ByteBuilder.h"
#include <string>

// An autosequence record of 88 bytes at offset: two 19-byte titles, 24 items, setting.
inline void putSequence(std::string &image, std::size_t offset, const std::string &title1, const std::string &title2,
                        std::vector<std::uint16_t> items, std::uint16_t setting)
{
    // Titles are written as 19 bytes, zero-padded.
    ByteBuilder::putText(image, offset, (title1 + std::string(19, '\0')).substr(0, 19));
    ByteBuilder::putText(image, offset + 19, (title2 + std::string(19, '\0')).substr(0, 19));
    for (std::size_t i = 0; i < 24; ++i)
        ByteBuilder::putWord(image, offset + 38 + 2 * i, i < items.size() ? items[i] : 0x4242);
    ByteBuilder::putWord(image, offset + 86, setting);
}

struct DataSet {
    TInstrDatabase checkitems;
    TTestProcList checklists;
    std::vector<TuserTester> testers;
    std::vector<Tautosequence> inspections;
};
