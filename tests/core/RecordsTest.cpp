#include "TInstr.h"
#include "TTestProc.h"
#include "Tautosequence.h"
#include <cstring>
#include <gtest/gtest.h>

TEST(Records, CheckitemAssignCutsAndTerminates)
{
    TInstr record;
    EXPECT_TRUE(record.isFree());
    EXPECT_EQ(std::string(record.command, 42), std::string(42, '\xFF'));
    record.assign('B', 'M', std::string(60, 'x'));
    EXPECT_EQ(record.commandText(), std::string(41, 'x'));
    EXPECT_EQ(record.command[41], 0);
    record.assign('B', 'M', "ab");
    EXPECT_EQ(std::string(record.command, 42), std::string("ab") + std::string(40, '\0'));
}

TEST(Records, AutosequenceSpecialValuesAndTitles)
{
    Tautosequence s;
    EXPECT_FALSE(s.isUnused());
    s.makeUnused();
    EXPECT_TRUE(s.isUnused());
    EXPECT_EQ(std::string(s.title1, 19), std::string("(UNUSED)          ") + '\0');
    Tautosequence::setTitle(s.title2, "Tab\there and a very long tail");
    EXPECT_EQ(std::string(s.title2, 19), std::string("Tab here and a ver") + '\0');
    EXPECT_FALSE(s.isUnused());

    EXPECT_FALSE(TesterSetting::isValid(0x20));
    EXPECT_EQ(TesterSetting::make(0, 3), 0);
}

TEST(Records, ChecklistFromSourceCleansTitleAndEndsItems)
{
    TEST_PROCEDURE source;
    std::memset(&source, 0, sizeof source);
    std::strcpy(source.title, "Annual\ttest");
    source.items[0] = 4;
    source.items[1] = 0;
    source.items[2] = 9;
    source.setting = 0x77;
    TTestProc target;
    target.assignFromSource(source);
    EXPECT_EQ(std::string(target.title, 42), "Annual test" + std::string(30, ' ') + '\0');
    EXPECT_EQ(target.items[1], 0);
    EXPECT_EQ(target.items[2], 0xFFFF);
    EXPECT_EQ(target.setting, 0x77);

    TTestProcList list;
    list.makeUnused();
    EXPECT_EQ(list.size(), 500u);
    EXPECT_EQ(list.items[0].titleText(), "(UNUSED)                                 ");
    EXPECT_EQ(list.at(500), nullptr);
}

// New tables hold 500 blank checklists and five testers named from zero with twelve blank sequences.
TEST(DefaultContainers, HoldBlankRecords)
{
    const auto bytes = [](const auto &record) {
        return std::string(reinterpret_cast<const char *>(&record), sizeof record);
    };
    const TTestProcList list;
    ASSERT_EQ(list.size(), 500u);
    for (std::size_t i = 0; i < list.size(); ++i)
        ASSERT_EQ(bytes(*list.at(i)), bytes(TTestProc())) << i;
    const std::vector<TuserTester> testers = TuserTester::defaultList();
    ASSERT_EQ(testers.size(), 5u);
    for (int t = 0; t < 5; ++t) {
        EXPECT_EQ(testers[t].name, "User Tester #" + std::to_string(t));
        ASSERT_EQ(testers[t].sequences.size(), 12u);
        for (const Tautosequence &sequence : testers[t].sequences)
            EXPECT_EQ(bytes(sequence), bytes(Tautosequence()));
    }
}
