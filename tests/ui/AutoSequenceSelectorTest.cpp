// The autosequence selector: the number list follows the type; the starting choice, OK and Cancel.
#include "TautoSequenceSelector.h"
#include "UiTestSupport.h"

namespace {
struct AutoSequenceSelectorFixture : ::testing::Test {
    const bool applicationFirst = (ensureApplication(), true); // before the widget
    TautoSequenceSelector selector{nullptr, {{"PHY", "Physical Inspection", 18}, {"UT1", "User Tester 1", 12},
                                             {"NON", "Nothing Yet", 0}}};
    QStringList items(const char *name) { return comboTexts(&selector, name); }
};
}

// It also starts from a given choice, and OK or Cancel end it.
TEST_F(AutoSequenceSelectorFixture, OpensOnTheFirstTypeAndTheNumberListFollowsTheTypeTheUserPicks)
{
    EXPECT_EQ(items("autoSequenceType"), QStringList({"Physical Inspection", "User Tester 1", "Nothing Yet"}));
    EXPECT_EQ(items("autoSequenceNumber"), numberTexts(18));
    EXPECT_EQ(selector.commandText(), "PHY01");
    auto *type = child<QComboBox>(&selector, "autoSequenceType");
    child<QComboBox>(&selector, "autoSequenceNumber")->setCurrentIndex(15);
    QTest::keyClick(type, Qt::Key_Down);
    EXPECT_EQ(items("autoSequenceNumber"), numberTexts(12));
    EXPECT_EQ(selector.number(), 1);
    QTest::keyClick(type, Qt::Key_Down);
    EXPECT_TRUE(items("autoSequenceNumber").isEmpty() && selector.number() == 0 && selector.commandText() == "");

    selector.select("UT1", 7);
    EXPECT_TRUE(selector.typeIndex() == 1 && selector.commandText() == "UT107");
    selector.select("XYZ", 30); // unknown type, number out of its range
    EXPECT_EQ(selector.commandText(), "PHY01");

    whenModal([](QWidget *dialog) { click(dialog, "btnOk"); });
    EXPECT_EQ(selector.exec(), QDialog::Accepted);
    whenModal([](QWidget *dialog) { click(dialog, "btnCancel"); });
    EXPECT_EQ(selector.exec(), QDialog::Rejected);
}
