#include "CoreTest.h"
#include "TInstr.h"
#include "TTestProc.h"
#include "Tautosequence.h"

TEST(Records, CheckitemAssignCutsAndTerminatesAndAutosequenceTitlesAreCleanedAndCut)
{
    TInstr record;
    EXPECT_TRUE(record.isFree());
    EXPECT_EQ(bytes(record), std::string(2, '\0') + std::string(42, '\xFF'));
    record.assign('B', 'M', std::string(60, 'x'));
    EXPECT_EQ(bytes(record), "BM" + std::string(41, 'x') + '\0');
    record.assign('B', 'M', "ab");
    EXPECT_EQ(bytes(record), "BMab" + std::string(40, '\0'));

    Tautosequence s;
    EXPECT_FALSE(s.isUnused());
    s.makeUnused();
    EXPECT_TRUE(s.isUnused());
    Tautosequence::setTitle(s.title2, "Tab\there and a very long tail");
    EXPECT_EQ(bytes(s).substr(0, 38), std::string("(UNUSED)          ") + '\0' + "Tab here and a ver" + '\0');
    EXPECT_FALSE(s.isUnused());
    EXPECT_FALSE(TesterSetting::isValid(0x20));
    EXPECT_EQ(TesterSetting::make(0, 3), 0);
}

TEST(Records, ChecklistFromSourceCleansTitleAndEndsItemsAndNewTablesHoldBlankRecords)
{
    TEST_PROCEDURE source;
    std::memset(&source, 0, sizeof source);
    std::strcpy(source.title, "Annual\ttest");
    source.items[0] = 4;
    source.items[2] = 9;
    source.setting = 0x77;
    TTestProc target;
    target.assignFromSource(source);
    EXPECT_EQ(std::string(target.title, 42), "Annual test" + std::string(30, ' ') + '\0');
    EXPECT_EQ(std::vector<std::uint16_t>(target.items, target.items + 3), (std::vector<std::uint16_t>{4, 0, 0xFFFF}));
    EXPECT_EQ(target.setting, 0x77);

    TTestProcList list;
    list.makeUnused();
    EXPECT_EQ(list.size(), 500u);
    EXPECT_EQ(list.items[0].titleText(), "(UNUSED)                                 ");
    EXPECT_EQ(list.at(500), nullptr);

    // New tables hold 500 blank checklists and five testers named from zero with twelve blank sequences.
    const TTestProcList fresh;
    ASSERT_EQ(fresh.size(), 500u);
    for (std::size_t i = 0; i < fresh.size(); ++i)
        ASSERT_EQ(bytes(*fresh.at(i)), bytes(TTestProc())) << i;
    std::string testers;
    for (const TuserTester &tester : TuserTester::defaultList())
        for (const Tautosequence &sequence : tester.sequences)
            testers += tester.name + (bytes(sequence) == bytes(Tautosequence()) ? " " : " not blank ");
    std::string expected;
    for (int t = 0; t < 5; ++t)
        for (int s = 0; s < 12; ++s)
            expected += "User Tester #" + std::to_string(t) + " ";
    EXPECT_EQ(testers, expected);
}
