#include "TuploadVerifier.h"
#include <algorithm>

namespace {
using namespace TransferImages;
constexpr std::size_t SequenceBytes = sizeof(Tautosequence); // 88
constexpr std::size_t SequencesPerTester = 12;
constexpr std::size_t UnusedOffset = TesterNamesOffset + 5 * TesterNameWidth; // 6969

std::optional<std::size_t> mismatch(const std::uint8_t *a, const std::uint8_t *b, std::size_t size)
{
    auto [left, right] = std::mismatch(a, a + size, b);
    if (left == a + size)
        return std::nullopt;
    return static_cast<std::size_t>(left - a);
}
}

std::string TuploadVerifier::checkitemPlace(std::size_t offset)
{
    return "checkitem " + std::to_string(offset / sizeof(TInstr) + 1);
}

std::string TuploadVerifier::autosequencePlace(std::size_t offset)
{
    if (offset < TesterSequencesOffset)
        return "physical inspection " + std::to_string(offset / SequenceBytes + 1);
    if (offset < TesterNamesOffset) {
        const std::size_t sequence = (offset - TesterSequencesOffset) / SequenceBytes;
        return "user tester " + std::to_string(sequence / SequencesPerTester + 1) + ", autosequence "
            + std::to_string(sequence % SequencesPerTester + 1);
    }
    if (offset < UnusedOffset)
        return "user tester " + std::to_string((offset - TesterNamesOffset) / TesterNameWidth + 1) + "'s name";
    return "the unused end of the autosequence area";
}

std::string TuploadVerifier::checklistPlace(std::size_t offset)
{
    return "checklist " + std::to_string(offset / ChecklistSlot + 1);
}

std::optional<std::string> TuploadVerifier::firstDifference(const TtransferData &sent, const TtransferData &readBack)
{
    if (auto at = mismatch(sent.checkitems, readBack.checkitems, CheckitemBytes))
        return checkitemPlace(*at) + " (byte " + std::to_string(*at) + " of the checkitem area)";
    if (auto at = mismatch(sent.autosequences, readBack.autosequences, AutosequenceBytes))
        return autosequencePlace(*at) + " (byte " + std::to_string(*at) + " of the autosequence area)";
    if (auto at = mismatch(sent.checklists, readBack.checklists, ChecklistBytes))
        return checklistPlace(*at) + " (byte " + std::to_string(*at) + " of the checklist area)";
    return std::nullopt;
}
