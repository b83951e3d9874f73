#include "CoreTest.h"
#include "TInstrDatabase.h"
#include "Tfilter.h"
#include "Twindows1252.h"

namespace {
using Indexes = std::vector<std::uint32_t>;

class FilterTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        TInstrDatabase::setNames({{'A', {"A - Autosequence", 'A'}}, {'M', {"M - Measure", 'M'}},
                                  {'P', {"P - Pass/Fail", 'P'}}, {'L', {"L - Meas. w Limits", 'L'}}});
        db.resize(12);
    }
    void TearDown() override { TInstrDatabase::clearNames(); }
    // Category and op code per slot, three characters a slot; a blank op code leaves the slot cleared.
    void fill(const std::string &records)
    {
        db.assign(12, TInstr());
        for (std::size_t i = 0; 3 * i + 1 < records.size(); ++i)
            if (records[3 * i + 1] != ' ')
                db[i].assign(records[3 * i], records[3 * i + 1], "");
    }
    Indexes run()
    {
        Indexes out{999};
        filter.apply(db, out, categories);
        return out;
    }

    std::vector<TInstr> db;
    TcategoryMap categories{{'B', "Electrical"}, {'C', "case"}, {'D', "Cord"}};
    Tfilter filter;
};
}

// A lower-case or digit category is no candidate; 'A' is an autosequence call.
TEST_F(FilterTest, CandidatesAndSelection)
{
    fill("bM 1M");
    EXPECT_TRUE(run().empty());
    fill("BM  P CA CM DL");
    EXPECT_EQ(run(), (Indexes{0, 1, 3, 4}));
    filter.opSet = {'M', 'A'};
    EXPECT_EQ(run(), (Indexes{0, 3}));
    filter.checklistMode = true;
    EXPECT_EQ(run(), (Indexes{0, 2, 3}));
    filter.opSet.clear();
    filter.categorySet = {'C', 'D'};
    EXPECT_EQ(run(), (Indexes{2, 3, 4}));
    filter.opSet = {'L', 'P'};
    EXPECT_EQ(run(), (Indexes{4}));
    // All 26 letters no longer admit checkitems without a category.
    filter.opSet.clear();
    filter.categorySet.resize(26);
    std::iota(filter.categorySet.begin(), filter.categorySet.end(), 'A');
    EXPECT_EQ(run(), (Indexes{0, 2, 3, 4}));
    filter.reset();
    EXPECT_TRUE(filter.categorySet.empty());
    EXPECT_TRUE(filter.checklistMode); // reset keeps mode and sort
    // Only the first 250 slots are considered.
    db.assign(300, TInstr('B', 'M', "x"));
    Indexes first250(250);
    std::iota(first250.begin(), first250.end(), 0u);
    EXPECT_EQ(run(), first250);
}

// Categories: D "CORD", C "CASE", B "ELECTRICAL", ' ' "" (sorts first); op names M < P < L's "L - Meas...".
TEST_F(FilterTest, OrdersAreStableMergeSortsOfTheirKeys)
{
    const std::string sixSame = "CM CM CM CM CM CM";
    const struct {
        std::string records;
        int sort;
        Indexes expected;
    } cases[] = {
        {"   BM       BM       BM", 1, {1, 4, 7}},
        {"   BM       BM       BM", 2, {7, 4, 1}},
        {"DM CP BP CM CM  L", 3, {5, 3, 4, 1, 0, 2}}, // equal keys keep database order
        {"DM CP BP CM CM  L", 4, {2, 0, 1, 4, 3, 5}}, // the negation puts equal keys first too
        {"BP BL DM CM", 5, {1, 3, 2, 0}},
        // An op code without a name: its empty name is smaller than every other,
        // but then the raw characters decide, and 'Q' is above all of them.
        {"BP BL DM CM BQ", 5, {1, 3, 2, 0, 4}},
        {sixSame, 3, {0, 1, 2, 3, 4, 5}},
        {sixSame, 5, {0, 1, 2, 3, 4, 5}},
        {sixSame, 0, {0, 1, 2, 3, 4, 5}},
    };
    for (const auto &c : cases) {
        fill(c.records);
        filter.setSort(c.sort);
        EXPECT_EQ(run(), c.expected) << c.records + " sort " + std::to_string(c.sort);
    }
    // Category names are upper-cased in Windows-1252: ÉLECTRIQUE < ÉTAGE, ŒIL < ŒUVRE.
    categories = {{'E', "\xC9TAGE"}, {'F', "\xE9lectrique"}, {'G', "\x8CUVRE"}, {'H', "\x9Cil"}};
    fill("EM FM GM HM");
    filter.setSort(3);
    EXPECT_EQ(run(), (Indexes{3, 2, 1, 0}));
}

TEST(Windows1252Case, UpperCasesEveryLetterWithACapital)
{
    EXPECT_EQ(Twindows1252::toUpper("abc xyz \xE0\xE9\xF6\xFE \x9A\x9C\x9E\xFF"),
              "ABC XYZ \xC0\xC9\xD6\xDE \x8A\x8C\x8E\x9F");
    // No capital in the code page, or not a letter: unchanged.
    EXPECT_EQ(Twindows1252::toUpper("\xDF\xB5\xF7\xD7 1,\t\x80"), "\xDF\xB5\xF7\xD7 1,\t\x80");
}
