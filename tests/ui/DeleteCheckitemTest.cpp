// The warning before a checkitem is deleted: the reference search's lines (tested in the core), "No" first, the answer.
#include "TdeleteInstructionFrm.h"
#include "UiTestSupport.h"

namespace {
struct Answered { bool result = false; QString lines; bool focusOnNo = false; };

// Confirms checkitem 7 and answers with button, or closes the window when it is null.
Answered confirm(const AppDirScope &app, const char *button)
{
    Answered answered;
    whenModal([&answered, button](QWidget *d) {
        whenTrue([d] { return d->isActiveWindow(); }, [&answered, button, d] {
            answered.lines = d->findChild<QPlainTextEdit *>("affectedSequences")->toPlainText();
            answered.focusOnNo = QApplication::focusWidget() == d->findChild<QPushButton *>("btnNo");
            button ? QTest::mouseClick(d->findChild<QPushButton *>(button), Qt::LeftButton) : void(d->close());
        });
    });
    answered.result = TdeleteInstructionFrm::confirmDeletion(7, app.dir().path());
    return answered;
}
} // namespace

TEST(DeleteCheckitem, ListsTheAffectedSequencesAndFollowsTheAnswer)
{
    AppDirScope app;
    Answered answered = confirm(app, "btnNo");
    EXPECT_TRUE(answered.result &&
                answered.lines == "No Autosequences Found!"); // without autosequence files the answer does not count

    app.writeData("inspection.asq", asqBytes("Physical Inspections", "Ward A", {sequence("CABLE", "", {7})}));
    answered = confirm(app, "btnYes");
    EXPECT_TRUE(answered.result && answered.focusOnNo);
    EXPECT_EQ(answered.lines, "Physical Inspections - Ward A\n  CABLE" + QString(13, ' ') + " - " + QString(18, ' '));
    EXPECT_FALSE(confirm(app, "btnNo").result || confirm(app, nullptr).result);
}
