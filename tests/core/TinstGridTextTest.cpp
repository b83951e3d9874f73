#include "TinstGridText.h"
#include <gtest/gtest.h>

namespace {
class TinstGridTextTest : public ::testing::Test {
protected:
    TinstGridTextTest()
    {
        TInstrDatabase::setNames({{'M', {"M - Measure", 'M', false, 9}}, {'P', {"P - Pass/Fail", 'P', true, 1}}});
    }
    ~TinstGridTextTest() override { TInstrDatabase::clearNames(); }

    TInstrDatabase db;
    TcategoryMap categories{{'B', "Earth bond"}};
};
}

TEST_F(TinstGridTextTest, HeaderNamesTheFourColumns)
{
    EXPECT_EQ(TinstGridText::header(), (std::array<std::string, 4>{"No.", "Category", "Op Code", "Command"}));
}

TEST_F(TinstGridTextTest, RowShowsNumberCategoryNameOpNameAndCommand)
{
    db[0].assign('B', 'M', "EB\t0\t5");
    db[249].assign('Q', 'P', "Plug ok?");
    db[7].assign(' ', 'P', "caf\xE9");
    EXPECT_EQ(TinstGridText::row(db, 0, categories),
              (std::array<std::string, 4>{"1", "Earth bond", "M - Measure", "EB\xBB" "0\xBB" "5"}));
    EXPECT_EQ(TinstGridText::row(db, 249, categories),
              (std::array<std::string, 4>{"250", "Q", "P - Pass/Fail", "Plug ok?"})); // no name: the letter
    EXPECT_EQ(TinstGridText::row(db, 7, categories), (std::array<std::string, 4>{"8", "", "P - Pass/Fail", "caf\xE9"}));
}

TEST_F(TinstGridTextTest, EveryTabOfAFullCommandIsMarked)
{
    db[3].assign('B', 'M', std::string(40, 'x') + "\t");
    EXPECT_EQ(TinstGridText::row(db, 3, categories)[3], std::string(40, 'x') + "\xBB");
}

TEST_F(TinstGridTextTest, UnknownOpCodeIsAnError)
{
    db[0].assign('B', 'Z', "x");
    EXPECT_THROW(TinstGridText::row(db, 0, categories), std::runtime_error);
}
