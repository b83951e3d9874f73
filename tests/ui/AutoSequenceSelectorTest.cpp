// The autosequence selector: its controls, the number list following the type,
// the starting choice, and what OK and Cancel leave to read.
#include "TautoSequenceSelector.h"
#include "UiTestSupport.h"
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace {
struct WithApplication {
    WithApplication() { ensureApplication(); }
};

struct AutoSequenceSelectorFixture : ::testing::Test, WithApplication {
    TautoSequenceSelector selector{nullptr, {{"PHY", "Physical Inspection", 18}, {"UT1", "User Tester 1", 12},
                                             {"NON", "Nothing Yet", 0}}};
    template <class T> T *get(const char *name) { return selector.findChild<T *>(QString::fromLatin1(name)); }
    QStringList items(const char *name) { return comboTexts(get<QComboBox>(name)); }
};
}

TEST_F(AutoSequenceSelectorFixture, ControlsAndTheFirstTypeWithItsNumbers)
{
    EXPECT_EQ(selector.windowTitle(), "Auto Sequence Selector");
    EXPECT_EQ(get<QLabel>("Label1")->text(), "AutosequenceType");
    EXPECT_EQ(get<QLabel>("Label2")->text(), "Number");
    EXPECT_EQ(items("autoSequenceType"), QStringList({"Physical Inspection", "User Tester 1", "Nothing Yet"}));
    EXPECT_EQ(items("autoSequenceNumber"), numberTexts(18));
    EXPECT_EQ(selector.commandText(), "PHY01");
}

TEST_F(AutoSequenceSelectorFixture, TheNumberListFollowsTheTypeTheUserPicks)
{
    auto *type = get<QComboBox>("autoSequenceType");
    get<QComboBox>("autoSequenceNumber")->setCurrentIndex(15);
    QTest::keyClick(type, Qt::Key_Down);
    EXPECT_EQ(items("autoSequenceNumber"), numberTexts(12));
    EXPECT_EQ(selector.number(), 1);
    QTest::keyClick(type, Qt::Key_Down);
    EXPECT_TRUE(items("autoSequenceNumber").isEmpty());
    EXPECT_EQ(selector.number(), 0);
    EXPECT_EQ(selector.commandText(), "");
}

TEST_F(AutoSequenceSelectorFixture, StartsFromAGivenChoiceAndOkOrCancelEndIt)
{
    selector.select("UT1", 7);
    EXPECT_EQ(selector.typeIndex(), 1);
    EXPECT_EQ(selector.commandText(), "UT107");
    selector.select("XYZ", 30); // unknown type, number out of its range
    EXPECT_EQ(selector.commandText(), "PHY01");

    whenModal([this](QWidget *) { get<QPushButton>("btnOk")->click(); });
    EXPECT_EQ(selector.exec(), QDialog::Accepted);
    whenModal([this](QWidget *) { get<QPushButton>("btnCancel")->click(); });
    EXPECT_EQ(selector.exec(), QDialog::Rejected);
}
