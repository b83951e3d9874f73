#include "ByteBuilder.h"
#include "TransferImages.h"
#include <cstring>
#include <gtest/gtest.h>

using namespace TransferImages;
using namespace ByteBuilder;

namespace {
std::string image(const std::uint8_t *area, std::size_t offset, std::size_t size)
{
    return std::string(reinterpret_cast<const char *>(area) + offset, size);
}

// An autosequence record of 88 bytes at offset: two 19-byte titles, 24 items, setting.
inline void putSequence(std::string &image, std::size_t offset, const std::string &title1, const std::string &title2,
                        std::vector<std::uint16_t> items, std::uint16_t setting)
{
    // Titles are written as 19 bytes, zero-padded.
    putText(image, offset, (title1 + std::string(19, '\0')).substr(0, 19));
    putText(image, offset + 19, (title2 + std::string(19, '\0')).substr(0, 19));
    for (std::size_t i = 0; i < 24; ++i)
        putWord(image, offset + 38 + 2 * i, i < items.size() ? items[i] : 0x4242);
    putWord(image, offset + 86, setting);
}

std::string le(std::initializer_list<std::uint16_t> words)
{
    std::string out;
    for (std::uint16_t w : words)
        out += le16(w);
    return out;
}
}

// Whole images are compared byte for byte in the end-to-end uploads; these are the
// edges a full data set does not reach.
TEST(TransferImagesPack, ShortTablesGoOutWithBlankRecordsAndNamesAreCut)
{
    TTestProcList lists;
    lists.items.resize(2);
    std::vector<std::uint8_t> checklistArea(ChecklistBytes, 0xAA);
    packChecklists(lists, checklistArea.data());
    EXPECT_EQ(image(checklistArea.data(), 499 * 264, 46), std::string(41, ' ') + '\0' + le({0, 0xFFFF}));
    EXPECT_EQ(image(checklistArea.data(), 499 * 264 + 236, 28), std::string(28, '\xAA')); // a slot's tail stays

    std::vector<Tautosequence> inspections(2);
    std::vector<TuserTester> testers(2);
    testers[1].name = "A name much longer than twenty";
    std::vector<std::uint8_t> area(AutosequenceBytes, 0xAA);
    packAutosequences(inspections, testers, area.data());
    EXPECT_EQ(image(area.data(), 17 * 88, 19), std::string(18, ' ') + '\0');
    EXPECT_EQ(image(area.data(), 17 * 88 + 38, 4), le({0, 0xFFFF}));
    EXPECT_EQ(image(area.data(), 6864 + 21, 21), std::string("A name much longer t") + '\0');
    EXPECT_EQ(image(area.data(), 6864 + 4 * 21, 21), std::string(20, ' ') + '\0');
    EXPECT_EQ(image(area.data(), 6969, 159), std::string(159, '\xAA'));
}

TEST(TransferImagesUnpack, GivesFixedCountsThroughCleaningCopies)
{
    std::string area(AutosequenceBytes, '\0');
    for (std::size_t n = 0; n < 18; ++n)
        putSequence(area, n * 88, "Insp", "", {1, 0}, 0);
    putSequence(area, 2 * 88, std::string("Tab\there\x7f") + std::string(10, 'x'), "Second", {5, 0, 7, 8}, 0x1B);
    for (std::size_t k = 0; k < 60; ++k)
        putSequence(area, 1584 + k * 88, "S", "T", {0}, 0);
    // Tester names: controls and 127 to blanks, then trimmed.
    putText(area, 6864 + 0 * 21, std::string("  NEW\x01TESTER") + '\0');
    putText(area, 6864 + 1 * 21, std::string("\tBench\x7f\r\n") + '\0');
    putText(area, 6864 + 2 * 21, std::string(20, '\x1F') + '\0');
    putText(area, 6864 + 3 * 21, std::string("  Unit 4  ") + '\0' + "junk");
    std::vector<Tautosequence> inspections(3);
    std::vector<TuserTester> testers(7);
    unpackAutosequences(reinterpret_cast<const std::uint8_t *>(area.data()), inspections, testers);

    ASSERT_EQ(inspections.size(), 18u);
    ASSERT_EQ(testers.size(), 5u);
    for (const auto &tester : testers)
        EXPECT_EQ(tester.sequences.size(), 12u);
    const Tautosequence &s = inspections[2];
    // Title: controls and 127 to blanks, cut to 18, then 0.
    EXPECT_EQ(std::string(s.title1, 19), std::string("Tab here ") + std::string(9, 'x') + '\0');
    EXPECT_EQ(std::string(s.title2, 19), "Second" + std::string(12, ' ') + '\0');
    EXPECT_EQ(s.items[0], 5);
    EXPECT_EQ(s.items[1], 0);
    EXPECT_EQ(s.items[2], 0xFFFF);
    EXPECT_EQ(s.items[3], 0xFFFF);
    EXPECT_EQ(s.setting, 0x1B);
    const std::vector<std::string> names{"NEW TESTER", "Bench", "", "Unit 4", ""};
    for (std::size_t t = 0; t < 5; ++t)
        EXPECT_EQ(testers[t].name, names[t]);
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
    EXPECT_EQ(std::string(table.items[7].title), "Line one" + std::string(33, ' '));
    EXPECT_EQ(table.items[7].items[2], 0xFFFF);
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
    slot(3, std::string(1, '\0') + "Mjunk", clearedCheckitem()); // category 0: free
    slot(4, std::string("C") + '\0' + "junk", clearedCheckitem()); // op code 0: free
    slot(1043, "ELlast" + std::string(38, '\xFF'), checkitem('E', 'L', "last" + std::string(37, '\xFF')));
    TInstrDatabase db;
    db.slots().resize(8);
    db[7].assign('A', 'M', "old");
    unpackCheckitems(reinterpret_cast<const std::uint8_t *>(area.data()), db);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(&db[0]), db.size() * sizeof(TInstr)), expected);
}
