#include "TitemList.h"
#include <gtest/gtest.h>

using Positions = std::vector<std::uint16_t>;
constexpr std::uint16_t U = TitemList::Unused;

// Four positions stand for 24 or 96: the rules see only the end, the fillers and the last position.
TEST(TitemList, AppendGoesAtTheEndMarkAndStopsAtAFullLastPosition)
{
    struct Case { Positions before, after; TitemList::AppendResult result; };
    for (Case c : {Case{{0, U, U, U}, {7, 0, U, U}, TitemList::AppendResult::Added},
                   Case{{1, 2, 3, 0}, {1, 2, 3, 7}, TitemList::AppendResult::Added}, // no room for a 0
                   Case{{1, 2, 3, 4}, {1, 2, 3, 4}, TitemList::AppendResult::Full},
                   Case{{1, 2, U, U}, {1, 2, U, U}, TitemList::AppendResult::NoEnd}}) {
        Positions positions = c.before;
        EXPECT_EQ(TitemList(positions).append(7), c.result) << ::testing::PrintToString(c.before);
        EXPECT_EQ(positions, c.after) << ::testing::PrintToString(c.before);
    }
}

TEST(TitemList, EditsMoveCheckitemsKeepTheEndAndNameTheRowToSelect)
{
    struct Case {
        const char *edit;
        int (TitemList::*apply)(int);
        Positions before;
        int row;
        Positions after;
        int select;
    };
    const Positions three{1, 2, 3, 0}, full{1, 2, 3, 4};
    for (const Case &c : std::vector<Case>{
             {"remove", &TitemList::removeAt, three, 1, {1, 3, 0, U}, 0},
             {"remove", &TitemList::removeAt, three, 2, {1, 2, 0, U}, 1},
             {"remove", &TitemList::removeAt, full, 0, {2, 3, 4, 0}, 0}, // the last position ends the list
             {"remove", &TitemList::removeAt, {5, 0, U, U}, 0, {0, U, U, U}, 0},
             {"remove", &TitemList::removeAt, three, 3, three, -1}, // no checkitem there
             {"top", &TitemList::top, three, 2, {3, 1, 2, 0}, 0},
             {"top", &TitemList::top, three, 0, three, -1},
             {"up", &TitemList::up, three, 2, {1, 3, 2, 0}, 1},
             {"up", &TitemList::up, three, 0, three, -1},
             {"down", &TitemList::down, three, 0, {2, 1, 3, 0}, 1},
             {"down", &TitemList::down, three, 2, three, -1},
             {"bottom", &TitemList::bottom, three, 0, {2, 3, 1, 0}, 2},
             {"bottom", &TitemList::bottom, full, 0, {2, 3, 4, 1}, 3}, // full: to the last position
             {"bottom", &TitemList::bottom, {5, 0, U, U}, 0, {5, 0, U, U}, -1},
         }) {
        Positions positions = c.before;
        TitemList list(positions);
        EXPECT_EQ((list.*c.apply)(c.row), c.select) << c.edit << " " << c.row << ::testing::PrintToString(c.before);
        EXPECT_EQ(positions, c.after) << c.edit << " " << c.row << ::testing::PrintToString(c.before);
    }
}

TEST(TitemList, ClearCountAndCopy)
{
    Positions positions{1, 2, 3, 4};
    TitemList list(positions);
    EXPECT_EQ(TitemList::count(Positions{1, U, 0, 3}), 1);
    list.clear();
    EXPECT_EQ(positions, (Positions{0, U, U, U}));
    list.assignUpToEnd(Positions{1, 0, 7, 8});
    EXPECT_EQ(positions, (Positions{1, 0, U, U}));
}
