// The warning before a checkitem is deleted: which sequences it lists, how it
// opens, and what each answer returns.
#include "TdeleteInstructionFrm.h"
#include "UiTestSupport.h"
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace {
struct Answered {
    bool result = false;
    QStringList lines;
    bool focusOnNo = false;
};

// Confirms checkitem `number` and answers with `button`, or closes the window when it is null.
Answered confirm(const AppDirScope &app, std::uint16_t number, const char *button)
{
    Answered answered;
    whenModal([&answered, button](QWidget *d) {
        whenTrue([d] { return d->isActiveWindow(); }, [&answered, button, d] {
            answered.lines = d->findChild<QPlainTextEdit *>("affectedSequences")->toPlainText().split('\n');
            answered.focusOnNo = QApplication::focusWidget() == d->findChild<QPushButton *>("btnNo");
            button ? QTest::mouseClick(d->findChild<QPushButton *>(button), Qt::LeftButton) : void(d->close());
        });
    });
    answered.result = TdeleteInstructionFrm::confirmDeletion(number, app.dir().path());
    return answered;
}

QString line(const std::string &title1, const std::string &title2)
{
    return QString::fromStdString("  " + title1 + std::string(18 - title1.size(), ' ') + " - " + title2 +
                                  std::string(18 - title2.size(), ' '));
}
} // namespace

TEST(DeleteCheckitem, ListsEachFileWithItsAffectedSequencesAndFollowsTheAnswer)
{
    AppDirScope app;
    app.writeData("usertester2.asq", asqBytes("User Tester Autosequences", "Bench 2",
                                              {sequence("LEAKAGE", "CLASS 1", {3, 7}), sequence("EARTH", "", {1})}));
    app.writeData("inspection.asq", asqBytes("Physical Inspections", "Ward A",
                                             {sequence("CABLE", "", {7}), unusedSequence(), sequence("PLUG", "FUSE", {2, 7})}));
    app.writeData("usertester1.asq", asqBytes("User Tester Autosequences", "Bench 1", {sequence("OTHER", "", {8})}));
    app.writeData("broken.asq", "not an autosequence file");

    Answered answered = confirm(app, 7, "btnYes");
    EXPECT_TRUE(answered.result);
    EXPECT_EQ(answered.lines, (QStringList{"Physical Inspections - Ward A", line("CABLE", ""), line("PLUG", "FUSE"),
                                           "User Tester Autosequences - Bench 2", line("LEAKAGE", "CLASS 1")}));
    EXPECT_TRUE(answered.focusOnNo);
    EXPECT_FALSE(confirm(app, 7, "btnNo").result);
    EXPECT_FALSE(confirm(app, 7, nullptr).result);
    EXPECT_EQ(confirm(app, 99, "btnYes").lines, QStringList{""}); // no file refers to 99
}
