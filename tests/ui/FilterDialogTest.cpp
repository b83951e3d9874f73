// The checkitem filter dialog: its lists, and every choice on either page rewriting the sets at once.
#include "TInstrDatabase.h"
#include "Thrown.h"
#include "UiTestSupport.h"
#include "asEdFilterPopup.h"

namespace {
using Chars = std::vector<char>;
const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
const Chars letters(alphabet.begin(), alphabet.end());

struct FilterDialog {
    TopCodeTable opInfo{{'M', {"M - Measure", 'M'}},
                        {'A', {"A - Autosequence", 'A'}},
                        {'P', {"P - Prompt", 'P'}},
                        {'D', {"D - Dielectric", 'D'}}};
    TcategoryMap descriptors{{'B', "Electrical"}, {'K', ""}};
    Tfilter filter;
    TinstructionFilterForm form{nullptr, true, &opInfo, &descriptors, &filter};

    template <typename T = QWidget> T *get(const char *name) { return child<T>(&form, name); }
    QStringList items(const char *name)
    {
        return modelTexts(form.findChild<QComboBox *>(name) ? get<QComboBox>(name)->model()
                                                            : get<QListWidget>(name)->model());
    }
    void clickBox(const char *name, int row) // where a user clicks: on the check box
    {
        auto *list = get<QListWidget>(name);
        QStyleOptionViewItem option;
        option.initFrom(list->viewport());
        option.rect = list->visualItemRect(list->item(row));
        option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
        QRect box = list->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, list);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, box.center());
    }
    void showPage(int page)
    {
        QTabBar *bar = get<QTabWidget>("filterSelect")->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(page).center());
    }
    void click(const char *button) { mouseClick(&form, button); }
    void key(const char *list, Qt::Key key) { QTest::keyClick(get(list), key); }
};
} // namespace

TEST(FilterDialog, ListsCategoriesInLetterOrderAndOpsInCharacterOrderAndEveryChoiceRewritesBothSets)
{
    ensureApplication();
    TInstrDatabase::clearNames();
    FilterDialog d;
    EXPECT_EQ(d.get<QTabWidget>("filterSelect")->currentIndex(), 0);
    QStringList categories;
    for (char c : letters)
        categories << (c == 'B' ? QString("Electrical") : QString(QChar(c)));
    EXPECT_EQ(d.items("lstBasicCat"), QStringList{"<All Categories>"} + categories);
    EXPECT_EQ(d.items("lstAdvCat"), categories);
    const QStringList names{"A - Autosequence", "D - Dielectric", "M - Measure", "P - Prompt"};
    EXPECT_EQ(d.items("lstBasicOp"), QStringList{"<All Op Codes>"} + names);
    EXPECT_EQ(d.items("lstAdvOp"), names);
    // Opening sets only the mode, and hands the op names to the database.
    EXPECT_TRUE(d.filter.checklistMode && d.filter.categorySet.empty() && d.filter.opSet.empty());
    EXPECT_EQ(TInstrDatabase::nameOf('D'), "D - Dielectric");
    const auto e = thrown<TinstructionFilterException>(
        [&] { TinstructionFilterForm(nullptr, false, nullptr, &d.descriptors, &d.filter); });
    EXPECT_EQ(e.value().what() + std::string("|") + e.value().file, "Invalid Checkitem Name List|asEdFilterPopup");
    EXPECT_GT(e.value().line, 0);

    // Every choice on either page rewrites both sets at once.
    d.form.show();
    using Sets = std::pair<Chars, Chars>;
    const auto sets = [&d] { return Sets(d.filter.categorySet, d.filter.opSet); };
    d.key("lstBasicCat", Qt::Key_End);
    d.key("lstBasicOp", Qt::Key_End);
    EXPECT_EQ(sets(), Sets({'Z'}, {'P'}));
    d.key("lstBasicCat", Qt::Key_Home);
    EXPECT_EQ(sets(), Sets(letters, {'P'}));
    d.showPage(1); // nothing checked yet
    EXPECT_EQ(sets(), Sets());
    for (int row : {10, 2, 10})
        d.clickBox("lstAdvCat", row);
    d.clickBox("lstAdvOp", 1);
    EXPECT_EQ(sets(), Sets({'C'}, {'D'}));
    d.showPage(0);
    EXPECT_EQ(sets(), Sets(letters, {'P'}));
    d.showPage(1);
    EXPECT_EQ(sets(), Sets({'C'}, {'D'}));

    d.click("btnSelectAllCat");
    d.click("btnSelectAllOp");
    d.showPage(0);
    d.showPage(1); // recomputed from the boxes, so every box is checked
    EXPECT_EQ(sets(), Sets(letters, {'A', 'D', 'M', 'P'}));
}
