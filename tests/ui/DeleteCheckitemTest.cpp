// The warning before a checkitem is deleted: which sequences it lists, how it
// opens, and what each answer returns.
#include "TdeleteInstructionFrm.h"
#include "UiTestSupport.h"
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace {
std::string padded(const std::string &title)
{
    return title + std::string(18 - title.size(), ' ');
}

struct Answered {
    bool result;
    QStringList lines;
    bool focusOnNo;
};

// Confirms checkitem `number` and answers with `button` (or closes the window when null).
Answered confirm(const AppDirScope &app, std::uint16_t number, const char *button)
{
    Answered answered{};
    whenModal([&answered, button](QWidget *dialog) {
        whenTrue([dialog] { return dialog->isActiveWindow(); }, [&answered, button, dialog] {
            answered.lines = dialog->findChild<QPlainTextEdit *>("affectedSequences")->toPlainText().split('\n');
            answered.focusOnNo = QApplication::focusWidget() == dialog->findChild<QPushButton *>("btnNo");
            if (button)
                QTest::mouseClick(dialog->findChild<QPushButton *>(button), Qt::LeftButton);
            else
                dialog->close();
        });
    });
    answered.result = TdeleteInstructionFrm::confirmDeletion(number, app.dir().path());
    return answered;
}
} // namespace

TEST(DeleteCheckitem, WithoutAutosequenceFilesItSaysSoAndAlwaysAllows)
{
    AppDirScope app;
    app.writeData("mit.dat", std::string(44, ' '));
    Answered answered = confirm(app, 7, "btnNo");
    EXPECT_TRUE(answered.result);
    EXPECT_EQ(answered.lines, QStringList{"No Autosequences Found!"});
    EXPECT_TRUE(answered.focusOnNo);
}

TEST(DeleteCheckitem, ListsEachFileWithItsAffectedSequencesInNameOrder)
{
    AppDirScope app;
    app.writeData("usertester2.asq", asqBytes("User Tester Autosequences", "Bench 2",
                                              {sequence("LEAKAGE", "CLASS 1", {3, 7, 0}), sequence("EARTH", "BOND", {1})}));
    app.writeData("inspection.asq", asqBytes("Physical Inspections", "Ward A",
                                             {sequence("CABLE", "", {7}), unusedSequence(), sequence("PLUG", "FUSE", {2, 7})}));
    app.writeData("usertester1.asq", asqBytes("User Tester Autosequences", "Bench 1", {sequence("OTHER", "", {8})}));
    app.writeData("broken.asq", "not an autosequence file");

    Answered answered = confirm(app, 7, "btnYes");
    EXPECT_TRUE(answered.result);
    EXPECT_EQ(answered.lines, (QStringList{
                                  "Physical Inspections - Ward A",
                                  QString::fromStdString("  " + padded("CABLE") + " - " + padded("")),
                                  QString::fromStdString("  " + padded("PLUG") + " - " + padded("FUSE")),
                                  "User Tester Autosequences - Bench 2",
                                  QString::fromStdString("  " + padded("LEAKAGE") + " - " + padded("CLASS 1")),
                              }));
    EXPECT_TRUE(answered.focusOnNo);

    EXPECT_FALSE(confirm(app, 7, "btnNo").result);
    EXPECT_FALSE(confirm(app, 7, nullptr).result);
    Answered unused = confirm(app, 99, "btnYes"); // files exist, none refers to 99
    EXPECT_TRUE(unused.result);
    EXPECT_EQ(unused.lines, QStringList{""});
}
