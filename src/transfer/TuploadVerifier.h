#pragma once
// Compares what an upload sent with what a download read back from the analyzer,
// area by area in the order of the transfer (checkitems, autosequences, checklists).
#include "TtransferRecord.h"
#include <optional>
#include <string>

class TuploadVerifier {
public:
    // Null when the three areas are equal byte for byte; else the first differing
    // place, e.g. "checkitem 7 (byte 270 of the checkitem area)".
    static std::optional<std::string> firstDifference(const TtransferData &sent, const TtransferData &readBack);

    // The record an area offset belongs to: "checkitem 7", "physical inspection 3",
    // "user tester 2, autosequence 5", "user tester 2's name", "checklist 12".
    static std::string checkitemPlace(std::size_t offset);
    static std::string autosequencePlace(std::size_t offset);
    static std::string checklistPlace(std::size_t offset);
};
