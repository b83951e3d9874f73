// The checkitem filter dialog: its lists, and how every choice on either page
// rewrites the filter's sets at once, OK and Cancel alike.
#include "TInstrDatabase.h"
#include "UiTestSupport.h"
#include "asEdFilterPopup.h"
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QStyleOptionViewItem>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace {
using Chars = std::vector<char>;

const Chars allLetters{'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'M',
                       'N', 'O', 'P', 'Q', 'R', 'S', 'T', 'U', 'V', 'W', 'X', 'Y', 'Z'};

TopCodeTable opTable()
{
    TopCodeTable table;
    for (const char *name : {"M - Measure", "A - Autosequence", "P - Prompt", "D - Dielectric"})
        table[name[0]] = TinstStruct{name, name[0], false, 1024};
    return table;
}

QStringList texts(const QComboBox *combo)
{
    QStringList result;
    for (int i = 0; i < combo->count(); ++i)
        result << combo->itemText(i);
    return result;
}

QStringList texts(const QListWidget *list)
{
    QStringList result;
    for (int i = 0; i < list->count(); ++i)
        result << list->item(i)->text();
    return result;
}

// A mouse click on the check box of a row, where a user clicks.
void clickCheckBox(QListWidget *list, int row)
{
    QStyleOptionViewItem option;
    option.initFrom(list->viewport());
    option.rect = list->visualItemRect(list->item(row));
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    QRect box = list->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, list);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, box.center());
}

void showPage(QTabWidget *tabs, int page)
{
    QTabBar *bar = tabs->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(page).center());
    ASSERT_EQ(tabs->currentIndex(), page);
}

struct FilterDialog {
    TopCodeTable ops = opTable();
    TcategoryMap descriptors{{'B', "Electrical"}, {'K', "Leakage"}};
    Tfilter filter;
    TinstructionFilterForm form{nullptr, true, &ops, &descriptors, &filter};
    template <typename T> T *get(const char *name) { return form.findChild<T *>(name); }
};
} // namespace

TEST(FilterDialog, ListsCategoriesInLetterOrderAndOpsInCharacterOrder)
{
    ensureApplication();
    TInstrDatabase::clearNames();
    FilterDialog d;
    EXPECT_EQ(d.form.windowTitle(), "Checkitem Filter");
    auto *tabs = d.get<QTabWidget>("filterSelect");
    EXPECT_EQ(tabs->tabText(0), "Basic Filter");
    EXPECT_EQ(tabs->tabText(1), "Advanced Filter");
    EXPECT_EQ(tabs->currentIndex(), 0);

    QStringList categories;
    for (char c : allLetters)
        categories << (c == 'B' ? "Electrical" : c == 'K' ? "Leakage" : QString(QChar(c)));
    EXPECT_EQ(texts(d.get<QComboBox>("lstBasicCat")), QStringList{"<All Categories>"} + categories);
    EXPECT_EQ(texts(d.get<QListWidget>("lstAdvCat")), categories);
    const QStringList ops{"A - Autosequence", "D - Dielectric", "M - Measure", "P - Prompt"};
    EXPECT_EQ(texts(d.get<QComboBox>("lstBasicOp")), QStringList{"<All Op Codes>"} + ops);
    EXPECT_EQ(texts(d.get<QListWidget>("lstAdvOp")), ops);
    EXPECT_EQ(d.get<QComboBox>("lstBasicCat")->currentIndex(), 0);
    EXPECT_EQ(d.get<QComboBox>("lstBasicOp")->currentIndex(), 0);

    // Opening sets only the mode and hands the op names to the database.
    EXPECT_TRUE(d.filter.checklistMode);
    EXPECT_TRUE(d.filter.categorySet.empty());
    EXPECT_TRUE(d.filter.opSet.empty());
    EXPECT_EQ(TInstrDatabase::nameOf('D'), "D - Dielectric");
}

TEST(FilterDialog, WithoutOpCodeInformationItThrowsWithItsSource)
{
    ensureApplication();
    Tfilter filter;
    TcategoryMap descriptors;
    try {
        TinstructionFilterForm form(nullptr, false, nullptr, &descriptors, &filter);
        FAIL();
    } catch (const TinstructionFilterException &e) {
        EXPECT_STREQ(e.what(), "Invalid Checkitem Name List");
        EXPECT_EQ(e.file, "asEdFilterPopup");
        EXPECT_GT(e.line, 0);
    }
}

TEST(FilterDialog, BasicListsSetOneEntryOrEverything)
{
    ensureApplication();
    FilterDialog d;
    auto *categories = d.get<QComboBox>("lstBasicCat");
    auto *ops = d.get<QComboBox>("lstBasicOp");
    QTest::keyClick(categories, Qt::Key_Down);
    QTest::keyClick(categories, Qt::Key_Down);
    EXPECT_EQ(d.filter.categorySet, Chars{'B'});
    QTest::keyClick(ops, Qt::Key_End);
    EXPECT_EQ(d.filter.opSet, Chars{'P'});
    QTest::keyClick(categories, Qt::Key_Home);
    EXPECT_EQ(d.filter.categorySet, allLetters);
    QTest::keyClick(ops, Qt::Key_Home);
    EXPECT_EQ(d.filter.opSet, (Chars{'A', 'D', 'M', 'P'}));
}

TEST(FilterDialog, AdvancedBoxesAndPageSwitchesRecomputeBothSets)
{
    ensureApplication();
    FilterDialog d;
    d.form.show();
    auto *tabs = d.get<QTabWidget>("filterSelect");
    QTest::keyClick(d.get<QComboBox>("lstBasicCat"), Qt::Key_Down);  // "A"
    QTest::keyClick(d.get<QComboBox>("lstBasicOp"), Qt::Key_End);    // "P - Prompt"

    showPage(tabs, 1); // nothing checked yet
    EXPECT_TRUE(d.filter.categorySet.empty());
    EXPECT_TRUE(d.filter.opSet.empty());
    auto *categoryBoxes = d.get<QListWidget>("lstAdvCat");
    auto *opBoxes = d.get<QListWidget>("lstAdvOp");
    clickCheckBox(categoryBoxes, 10);
    clickCheckBox(categoryBoxes, 2);
    clickCheckBox(opBoxes, 1);
    EXPECT_EQ(d.filter.categorySet, (Chars{'C', 'K'}));
    EXPECT_EQ(d.filter.opSet, Chars{'D'});
    clickCheckBox(categoryBoxes, 10); // unchecked again
    EXPECT_EQ(d.filter.categorySet, Chars{'C'});

    showPage(tabs, 0);
    EXPECT_EQ(d.filter.categorySet, Chars{'A'});
    EXPECT_EQ(d.filter.opSet, Chars{'P'});
    showPage(tabs, 1);
    EXPECT_EQ(d.filter.categorySet, Chars{'C'});
    EXPECT_EQ(d.filter.opSet, Chars{'D'});

    QTest::mouseClick(d.get<QPushButton>("btnSelectAllCat"), Qt::LeftButton);
    QTest::mouseClick(d.get<QPushButton>("btnSelectAllOp"), Qt::LeftButton);
    EXPECT_EQ(d.filter.categorySet, allLetters);
    EXPECT_EQ(d.filter.opSet, (Chars{'A', 'D', 'M', 'P'}));
    for (auto *list : {categoryBoxes, opBoxes})
        for (int j = 0; j < list->count(); ++j)
            EXPECT_EQ(list->item(j)->checkState(), Qt::Checked) << j;
}

TEST(FilterDialog, OkAndCancelBothLeaveWhatWasWritten)
{
    ensureApplication();
    for (const char *button : {"btnOk", "btnCancel"}) {
        FilterDialog d;
        whenModal([&d, button](QWidget *) {
            QTest::keyClick(d.get<QComboBox>("lstBasicOp"), Qt::Key_Down);
            QTest::mouseClick(d.get<QPushButton>(button), Qt::LeftButton);
        });
        EXPECT_EQ(d.form.exec(), button == std::string("btnOk") ? QDialog::Accepted : QDialog::Rejected);
        EXPECT_EQ(d.filter.opSet, Chars{'A'}) << button;
        EXPECT_TRUE(d.filter.categorySet.empty()) << button;
    }
}
