// The header-press rule of the checkitem lists, and what a sort number names.
#include "TsortState.h"
#include <gtest/gtest.h>

TEST(TsortState, HeaderPressTurnsTheSortedColumnRoundAndStartsOthersAscending)
{
    const struct {
        int before, column, after;
    } presses[] = {{0, 0, 1}, {1, 0, 2}, {2, 0, 1}, {5, 0, 1}, {0, 1, 3}, {3, 1, 4}, {4, 1, 3},
                   {2, 1, 3}, {1, 2, 5}, {5, 2, 6}, {6, 2, 5}, {4, 3, 4}, {0, 3, 0}, {6, -1, 6}};
    for (const auto &p : presses) {
        TsortState sort(std::uint8_t(p.before));
        sort.pressHeader(p.column);
        EXPECT_EQ(sort.number(), p.after) << p.before << " column " << p.column;
    }
}

TEST(TsortState, NumberNamesColumnAndDirection)
{
    const struct {
        int number, column;
        bool ascending;
    } states[] = {{0, -1, false}, {1, 0, true}, {2, 0, false}, {3, 1, true}, {4, 1, false}, {5, 2, true},
                  {6, 2, false}, {7, -1, true}};
    for (const auto &s : states) {
        const TsortState sort(std::uint8_t(s.number));
        EXPECT_EQ(sort.column(), s.column) << s.number;
        if (s.column >= 0) {
            EXPECT_EQ(sort.ascending(), s.ascending) << s.number;
        }
    }
}
