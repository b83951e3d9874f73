#include "CoreTest.h"
#include "TTestProc.h"
#include "Tautosequence.h"

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
