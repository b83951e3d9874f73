// The checkitem list both editors show and the listing prints: filtered, sorted, read live.
#include "TInstrDatabase.h"
#include "TcheckitemListModel.h"
#include "TinstListingPrinter.h"
#include "UiTestSupport.h"

namespace {
using Rows = QList<QStringList>;
const QStringList Header{"No.", "Category", "Op Code", "Command"};

struct CheckitemList : ::testing::Test {
    TInstrDatabase db;
    TcategoryMap names{{'A', "Visual"}, {'B', "Electrical"}};
    TopCodeTable ops{{'K', {"K - OK Prompt", 'K'}}, {'M', {"M - Measure", 'M'}}, {'P', {"P - Pass/Fail", 'P'}}};

    CheckitemList()
    {
        ensureApplication();
        TInstrDatabase::setNames(ops);
        db[0].assign('B', 'M', "Earth bond\t0.10");
        db[1].assign('A', 'P', "Plug intact?");
        db[2].assign(' ', 'K', "Press OK");
        db[4].assign('A', 'z', "No definition");
        db[260].assign('A', 'P', "Beyond the editors' slots");
    }
    static QStringList numbers(const TcheckitemListModel &list)
    {
        QStringList column;
        for (const QStringList &row : TinstListingPrinter::rowsOf(list).mid(1))
            column << row[0];
        return column;
    }
};
} // namespace

TEST_F(CheckitemList, RowsAreTheGridTextsOfTheFilteredSlotsFollowTheDatabaseAndAnEmptyListIsBlankWhereAskedFor)
{
    TcheckitemListModel list(&db, names, false, TcheckitemListModel::EmptyList::NoRows);
    EXPECT_EQ(list.rowCount(), 0); // until filtered
    list.refilter();
    EXPECT_EQ(TinstListingPrinter::rowsOf(list),
              (Rows{Header,
                    {"1", "Electrical", "M - Measure", QString::fromUtf8("Earth bond»0.10")},
                    {"2", "Visual", "P - Pass/Fail", "Plug intact?"},
                    {"3", "", "K - OK Prompt", "Press OK"},
                    {"5", "Visual", "", "No definition"}}));
    db[2].category = 'B';
    EXPECT_TRUE(list.index(2, 1).data().toString() == "Electrical" &&
                list.flags(list.index(0, 0)) == (Qt::ItemIsSelectable | Qt::ItemIsEnabled));

    // An empty list is one blank row only where asked for.
    TInstrDatabase empty;
    for (auto [mode, rows] : {std::pair{TcheckitemListModel::EmptyList::BlankRow, Rows{Header, {"", "", "", ""}}},
                              std::pair{TcheckitemListModel::EmptyList::NoRows, Rows{Header}}}) {
        TcheckitemListModel emptyList(&empty, names, false, mode);
        emptyList.refilter();
        EXPECT_EQ(TinstListingPrinter::rowsOf(emptyList), rows);
        EXPECT_TRUE(emptyList.shownItems().empty());
    }
}

// The orders themselves are the filter's and the sort state's, checked there.
TEST_F(CheckitemList, HeaderPressesSortAndResetOrderDropsFilterAndSort)
{
    TcheckitemListModel list(&db, names, false, TcheckitemListModel::EmptyList::BlankRow);
    list.pressHeader(0);
    EXPECT_EQ(numbers(list) << QString::number(list.sortState().number()), (QStringList{"5", "3", "2", "1", "2"}));
    list.filter().categorySet = {'A'};
    list.refilter();
    EXPECT_EQ(numbers(list), (QStringList{"5", "2"}));
    list.append(2);
    EXPECT_EQ(numbers(list), (QStringList{"5", "2", "3"}));
    list.resetOrder();
    EXPECT_EQ(numbers(list) << QString::number(list.sortState().number()), (QStringList{"1", "2", "3", "5", "0"}));
}
