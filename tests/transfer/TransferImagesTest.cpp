#include "TransferImages.h"
#include "ByteBuilder.h"
#include <gtest/gtest.h>

using namespace TransferImages;
using namespace ByteBuilder;

namespace {
std::string image(const void *area, std::size_t offset, std::size_t size)
{
    return std::string(static_cast<const char *>(area) + offset, size);
}
} // namespace

// Whole images are compared in the end-to-end uploads; these are the edges a full data set does not reach.
TEST(TransferImagesPack, ShortTablesGoOutWithBlankRecordsAndNamesAreCut)
{
    TTestProcList lists;
    lists.items.resize(2);
    std::vector<std::uint8_t> checklistArea(ChecklistBytes, 0xAA);
    packChecklists(lists, checklistArea.data());
    EXPECT_EQ(image(checklistArea.data(), 499 * 264, 46), std::string(41, ' ') + '\0' + le16(0) + le16(0xFFFF));
    EXPECT_EQ(image(checklistArea.data(), 499 * 264 + 236, 28), std::string(28, '\xAA')); // a slot's tail stays

    std::vector<Tautosequence> inspections(2);
    std::vector<TuserTester> testers(2);
    testers[1].name = "A name much longer than twenty";
    std::vector<std::uint8_t> area(AutosequenceBytes, 0xAA);
    packAutosequences(inspections, testers, area.data());
    EXPECT_EQ(image(area.data(), 17 * 88, 42),
              std::string(18, ' ') + '\0' + std::string(18, ' ') + '\0' + le16(0) + le16(0xFFFF));
    EXPECT_EQ(image(area.data(), 6864 + 21, 21), std::string("A name much longer t") + '\0');
    EXPECT_EQ(image(area.data(), 6864 + 4 * 21, 21), std::string(20, ' ') + '\0');
    EXPECT_EQ(image(area.data(), 6969, 159), std::string(159, '\xAA'));
}

TEST(TransferImagesUnpack, GivesFixedCountsThroughCleaningCopies)
{
    std::string area(AutosequenceBytes, '\0');
    for (std::size_t n = 0; n < 18; ++n)
        putText(area, n * 88, sequenceRecord("Insp", "", 0, {1, 0}));
    putText(area, 2 * 88,
            sequenceRecord(std::string("Tab\there\x7f") + std::string(10, 'x'), "Second", 0x1B, {5, 0, 7, 8}));
    for (std::size_t k = 0; k < 60; ++k)
        putText(area, 1584 + k * 88, sequenceRecord("S", "T", 0, {0}));
    // Tester names and titles: controls and 127 to blanks, then names trimmed, titles cut to 18 and ended by 0.
    const std::string names[] = {"  NEW\x01TESTER", "\tBench\x7f\r\n", std::string(20, '\x1F'),
                                 std::string("  Unit 4  \0junk", 15)};
    for (std::size_t t = 0; t < 4; ++t)
        putText(area, 6864 + t * 21, names[t] + '\0');
    std::vector<Tautosequence> inspections(3);
    std::vector<TuserTester> testers(7);
    unpackAutosequences(reinterpret_cast<const std::uint8_t *>(area.data()), inspections, testers);

    std::vector<std::string> got;
    for (const auto &tester : testers)
        got.push_back(tester.name + "/" + std::to_string(tester.sequences.size()));
    EXPECT_EQ(got, (std::vector<std::string>{"NEW TESTER/12", "Bench/12", "/12", "Unit 4/12", "/12"}));
    ASSERT_EQ(inspections.size(), 18u);
    EXPECT_EQ(image(&inspections[2], 0, 88), "Tab here " + std::string(9, 'x') + '\0' + "Second" +
                                                 std::string(12, ' ') + '\0' + le16(5) + le16(0) +
                                                 std::string(44, '\xFF') + le16(0x1B));
}

TEST(TransferImagesUnpack, ChecklistsReplaceTheTable)
{
    std::string lists(ChecklistBytes, '\0');
    putText(lists, 7 * 264, std::string("Line\x01one") + '\0');
    putWord(lists, 7 * 264 + 42, 3);
    putWord(lists, 7 * 264 + 44, 0);
    putWord(lists, 7 * 264 + 46, 99);
    TTestProcList table;
    unpackChecklists(reinterpret_cast<const std::uint8_t *>(lists.data()), table);
    ASSERT_EQ(table.size(), 500u);
    EXPECT_EQ(image(&table.items[7], 0, 236),
              "Line one" + std::string(33, ' ') + '\0' + le16(3) + le16(0) + std::string(188, '\xFF') + le16(0));
}

// Slots as an analyzer might send them: unterminated, junk after the text, half-free records.
TEST(ReceivedCheckitems, DownloadFillsTheTableAssignsUsedSlotsAndClearsFreeOnes)
{
    std::string area(CheckitemBytes, '\0'), expected;
    for (std::size_t i = 0; i < TInstrDatabase::SlotCount; ++i)
        expected += clearedCheckitem();
    auto slot = [&](std::size_t n, const std::string &sent, const std::string &kept) {
        putText(area, n * 44, sent);
        expected.replace(n * 44, 44, kept);
    };
    slot(0, std::string("AP") + "HELLO" + '\0' + "JUNK" + std::string(32, 'j') + 'Z', checkitem('A', 'P', "HELLO"));
    slot(1, " K" + std::string(42, 'x'), checkitem(' ', 'K', std::string(41, 'x')));
    slot(2, "BMTab\tkept", checkitem('B', 'M', "Tab\tkept"));
    slot(3, std::string(1, '\0') + "Mjunk", clearedCheckitem());   // category 0: free
    slot(4, std::string("C") + '\0' + "junk", clearedCheckitem()); // op code 0: free
    slot(1043, "ELlast" + std::string(38, '\xFF'), checkitem('E', 'L', "last" + std::string(37, '\xFF')));
    TInstrDatabase db;
    db.slots().resize(8);
    db[7].assign('A', 'M', "old");
    unpackCheckitems(reinterpret_cast<const std::uint8_t *>(area.data()), db);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(&db[0]), db.size() * sizeof(TInstr)), expected);
}
