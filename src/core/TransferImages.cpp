#include "TransferImages.h"
#include <cstring>

namespace TransferImages {
namespace {
constexpr std::size_t SequenceSize = sizeof(Tautosequence);
constexpr std::size_t TesterCount = 5, SequencesPerTester = 12;
constexpr std::size_t TesterNameBytes = 20; // then a 0 in the 21st byte

std::size_t testerSequenceOffset(std::size_t tester, std::size_t sequence)
{
    return TesterSequencesOffset + (tester * SequencesPerTester + sequence) * SequenceSize;
}

Tautosequence readSequence(const std::uint8_t *at)
{
    Tautosequence raw;
    std::memcpy(static_cast<void *>(&raw), at, SequenceSize);
    Tautosequence clean;
    cleanAutosequence(raw, clean);
    return clean;
}
}

static_assert(TInstrDatabase::SlotCount * sizeof(TInstr) == CheckitemBytes);
static_assert(TesterSequencesOffset + 5 * 12 * 88 == TesterNamesOffset);

void packCheckitems(const TInstrDatabase &db, std::uint8_t *area)
{
    // A table shorter than 1044 is sent with cleared slots after it.
    const TInstr cleared;
    for (std::size_t i = 0; i < TInstrDatabase::SlotCount; ++i)
        std::memcpy(area + i * sizeof(TInstr), i < db.size() ? &db[i] : &cleared, sizeof(TInstr));
}

void packChecklists(const TTestProcList &checklists, std::uint8_t *area)
{
    // Missing checklists go out as blank records; the last 28 bytes of a slot are not ours.
    const TTestProc blank;
    for (std::size_t n = 0; n < ChecklistBlocks; ++n) {
        const TTestProc *item = checklists.at(n);
        std::memcpy(area + n * ChecklistSlot, static_cast<const TEST_PROCEDURE *>(item ? item : &blank),
                    sizeof(TEST_PROCEDURE));
    }
}

void packAutosequences(const std::vector<Tautosequence> &inspections, const std::vector<TuserTester> &testers,
                       std::uint8_t *area)
{
    // Fewer inspections, testers or sequences than the area holds: the rest are blank records.
    const Tautosequence blank;
    for (std::size_t n = 0; n < InspectionCount; ++n)
        std::memcpy(area + n * SequenceSize, n < inspections.size() ? &inspections[n] : &blank, SequenceSize);
    for (std::size_t t = 0; t < TesterCount; ++t) {
        const TuserTester *tester = t < testers.size() ? &testers[t] : nullptr;
        for (std::size_t s = 0; s < SequencesPerTester; ++s) {
            const Tautosequence *sequence = tester && s < tester->sequences.size() ? &tester->sequences[s] : &blank;
            std::memcpy(area + testerSequenceOffset(t, s), sequence, SequenceSize);
        }
        std::uint8_t *name = area + TesterNamesOffset + t * TesterNameWidth;
        std::string text = tester ? tester->name : std::string();
        text.resize(TesterNameBytes, ' ');
        std::memcpy(name, text.data(), TesterNameBytes);
        name[TesterNameBytes] = 0;
    }
}

void unpackCheckitems(const std::uint8_t *area, TInstrDatabase &db)
{
    // Received bytes go through the record's own assignment, so every slot is
    // terminated and zero-padded after its text, and a free slot is a cleared one.
    auto &slots = db.slots();
    slots.assign(TInstrDatabase::SlotCount, TInstr());
    for (std::size_t i = 0; i < TInstrDatabase::SlotCount; ++i) {
        TInstr received;
        std::memcpy(static_cast<void *>(&received), area + i * sizeof(TInstr), sizeof(TInstr));
        if (!received.isFree())
            slots[i].assign(received);
    }
}

void unpackChecklists(const std::uint8_t *area, TTestProcList &checklists)
{
    checklists.items.assign(ChecklistBlocks, TTestProc());
    for (std::size_t n = 0; n < ChecklistBlocks; ++n) {
        TEST_PROCEDURE source;
        std::memcpy(&source, area + n * ChecklistSlot, sizeof source);
        checklists.items[n].assignFromSource(source);
    }
}

void unpackAutosequences(const std::uint8_t *area, std::vector<Tautosequence> &inspections,
                         std::vector<TuserTester> &testers)
{
    inspections.clear();
    for (std::size_t n = 0; n < InspectionCount; ++n)
        inspections.push_back(readSequence(area + n * SequenceSize));
    testers.clear();
    for (std::size_t t = 0; t < TesterCount; ++t) {
        TuserTester tester;
        for (std::size_t s = 0; s < SequencesPerTester; ++s)
            tester.sequences.push_back(readSequence(area + testerSequenceOffset(t, s)));
        const char *name = reinterpret_cast<const char *>(area + TesterNamesOffset + t * TesterNameWidth);
        std::string text(name, strnlen(name, TesterNameWidth));
        for (char &c : text) {
            const auto u = static_cast<unsigned char>(c);
            if (u < 32 || u == 127)
                c = ' ';
        }
        std::size_t first = text.find_first_not_of(' ');
        std::size_t last = text.find_last_not_of(' ');
        tester.name = first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
        testers.push_back(std::move(tester));
    }
}

void cleanAutosequence(const Tautosequence &source, Tautosequence &target)
{
    Tautosequence::setTitle(target.title1, Tautosequence::titleText(source.title1));
    Tautosequence::setTitle(target.title2, Tautosequence::titleText(source.title2));
    target.assignItemsFrom(source);
}
}
