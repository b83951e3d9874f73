// The frame's start-up, lists, clear, rename and save triggers, driven through its controls.
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "TlistRowDelegate.h"
#include "TseqTitleEditForm.h"
#include "TtreeNodeDelegate.h"
#include "UiTestSupport.h"

namespace {
const Message ConfirmClear{"Confirm",
                           "Are you sure you want to clear this Autosequence?\nThis operation cannot be undone.",
                           MsgIcon::Question, MsgButtons::YesNo, MsgModality::Task};

std::vector<Tautosequence> sampleInspections()
{
    return {sequence("  EARTH BOND ", "CLASS I  ", {1, 2}), unusedSequence(), sequence("INSULATION", "", {3})};
}

std::vector<std::string> testerNames() { return {"WARD A", "   ", "WARD C", "WARD D", "WARD E"}; }

struct FrameFixture : ::testing::Test, FrameHost {
    RecordingMessageSink sink;

    std::unique_ptr<TAutoSeqEditFrame> makeFrame()
    {
        return std::make_unique<TAutoSeqEditFrame>(nullptr, &host, &hostData2, &sink);
    }
    // A frame over the sample data set.
    std::unique_ptr<TAutoSeqEditFrame> makeSampleFrame()
    {
        return appDir.writeCompleteDataSet(sampleInspections(), testerNames()), makeFrame();
    }
    static QStringList rootTexts(QWidget *frame) { return modelTexts(child<QTreeWidget>(frame, "LstUTS")->model()); }
    // Shows the frame at its design size on the tester tab, for real mouse clicks.
    static QTreeWidget *showTesterTab(QWidget *frame)
    {
        frame->resize(792, 546);
        frame->show();
        frame->findChild<QTabWidget *>("PageControl1")->setCurrentIndex(1);
        QApplication::processEvents();
        return child<QTreeWidget>(frame, "LstUTS");
    }
    // The sample frame at its design size, active, for clicks as a user makes them.
    std::unique_ptr<TAutoSeqEditFrame> showActive()
    {
        auto frame = makeSampleFrame();
        frame->resize(792, 546);
        frame->show();
        frame->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(frame.get()));
        return frame;
    }
    static void clickTab(QWidget *frame, int index)
    {
        QTabBar *bar = child<QTabWidget>(frame, "PageControl1")->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    }
    static void clickRow(QAbstractItemView *view, const QModelIndex &index, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, view->visualRect(index).center());
    }
    std::string read(const std::string &name) const { return appDir.readData(name); }
    // The name form's caption, label and name.
    static QString saysAndShows(QWidget *form)
    {
        return form->windowTitle() + "|" + child<QLabel>(form, "Label1")->text() + "|" +
               child<QLineEdit>(form, "sequenceTitle")->text();
    }
};
} // namespace

TEST(ListColours, SilverForUnusedWhiteWhenSelectedBlackOtherwise)
{
    const QColor silver(192, 192, 192), white(255, 255, 255), black(0, 0, 0);
    EXPECT_EQ(
        (QList<QColor>{TlistRowDelegate::fontColour("<unused>", true), TlistRowDelegate::fontColour("<unused>", false),
                       TlistRowDelegate::fontColour("A - B", true), TlistRowDelegate::fontColour("A - B", false),
                       TtreeNodeDelegate::fontColour(true, true), TtreeNodeDelegate::fontColour(false, true),
                       TtreeNodeDelegate::fontColour(false, false)}),
        (QList<QColor>{silver, silver, white, black, silver, white, black}));
    // The number column: as for 88 inspections; checklist 500's number fits it.
    ensureApplication();
    const QFontMetrics metrics{QFont()};
    EXPECT_EQ(TlistRowDelegate::numberWidth(metrics, 18), metrics.horizontalAdvance("88. "));
    EXPECT_GE(TlistRowDelegate::numberWidth(metrics, 500), metrics.horizontalAdvance("500. "));
}

// The Edit button on a tester: OK keeps a stored name longer than the form takes,
// the caret starts at the end of the name, and the new name is saved upper-case.
TEST_F(FrameFixture, RenameThroughEditButtonKeepsLongNamesAddsAtTheCaretUppercasesAndSavesAllThree)
{
    std::vector<std::string> names = testerNames();
    names[3] = "THE LONG NAMED WARD ON FLOOR 7"; // 30 characters from another tool
    appDir.writeCompleteDataSet(sampleInspections(), names);
    auto frame = makeFrame();
    ASSERT_EQ(frame->dataSet().userTesters[3].name, names[3]);
    auto *tree = child<QTreeWidget>(frame.get(), "LstUTS");
    tree->setCurrentItem(tree->topLevelItem(3));
    QString shown;
    whenModal([&](QWidget *form) { shown = saysAndShows(form); click(form, "Button2"); });
    click(frame.get(), "BtnUTSEdit");
    EXPECT_EQ(shown, QString::fromStdString("Tester Name Editor|Tester Name|" + names[3]));
    EXPECT_TRUE(frame->dataSet().userTesters[3].name == names[3] &&
                tree->topLevelItem(3)->text(0) == "iv. THE LONG NAMED WARD ON FLOOR 7");

    tree->setCurrentItem(tree->topLevelItem(2));
    bool focused = false;
    whenModal([&](QWidget *form) {
        auto *edit = child<QLineEdit>(form, "sequenceTitle");
        // The focus arrives with the form's activation, which may follow its showing.
        focused = QTest::qWaitFor([edit] { return QApplication::focusWidget() == edit; });
        focused ? QTest::keyClicks(edit, " EAST"), QTest::keyClick(edit, Qt::Key_Return) : void(form->close());
    });
    click(frame.get(), "BtnUTSEdit");
    EXPECT_TRUE(focused && frame->dataSet().userTesters[2].name == "WARD C EAST");

    whenModal([&](QWidget *form) {
        child<QLineEdit>(form, "sequenceTitle")->setText(QString::fromUtf8("  icu\tcaf\u00e9\n  ")),
            click(form, "Button2");
    }); // pasted
    click(frame.get(), "BtnUTSEdit");
    EXPECT_TRUE(frame->dataSet().userTesters[2].name == "ICU CAF\xC9" &&
                tree->topLevelItem(2)->text(0) == QString::fromUtf8("iii. ICU CAF\u00c9"));
    EXPECT_TRUE(sink.messages.empty());

    // The save's layout is checked with the return button; here the names reach the files.
    EXPECT_EQ(read("usertester3.asq").substr(64, 8) + read("usertester4.asq").substr(64, 30), "ICU CAF\xC9" + names[3]);
    EXPECT_TRUE(std::filesystem::exists(appDir.data("mit.dat")) &&
                std::filesystem::exists(appDir.data("inspection.asq")));
}

TEST(TitleForm, TypingStopsAtTwentyStorableCharactersAPasteKeepsWhatFitsALongerNameStays)
{
    ensureApplication();
    TseqTitleEditForm form(nullptr, "");
    auto *edit = form.findChild<QLineEdit *>("sequenceTitle");
    QTest::keyClicks(edit, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    EXPECT_EQ(edit->text(), "ABCDEFGHIJKLMNOPQRST");
    // Over all, into the middle of a shorter name (the start of the pasted text, up to the limit), and
    // in Windows-1252, where what it cannot hold is refused, not saved as a blank.
    const struct { QString before; int caret; QString pasted, after; int caretAfter; } pastes[] = {
        {"ABC", -1, "12345678901234567890123", "12345678901234567890", 20},
        {"WARD  EAST", 5, "NUMBER 12 AND MORE", "WARD NUMBER 12  EAST", 15},
        {"BAY", 3, QString::fromUtf8(" \u0394\u00C4\u03A9"), QString::fromUtf8("BAY \u00C4"), 5}};
    for (const auto &p : pastes) {
        edit->setText(p.before);
        p.caret < 0 ? edit->selectAll() : edit->setCursorPosition(p.caret);
        QApplication::clipboard()->setText(p.pasted);
        QTest::keySequence(edit, QKeySequence::Paste);
        EXPECT_EQ(edit->text() + "|" + QString::number(edit->cursorPosition()),
                  p.after + "|" + QString::number(p.caretAfter));
    }

    // A longer stored name stays whole and may shrink, but not grow.
    const QString stored = "A NAME OF TWENTY-FIVE CHR";
    TseqTitleEditForm longer(nullptr, stored);
    auto *longEdit = longer.findChild<QLineEdit *>("sequenceTitle");
    EXPECT_EQ(longer.text(), stored);
    longEdit->end(false);
    QTest::keyClick(longEdit, Qt::Key_X); // a paste goes the same way, checked above
    EXPECT_EQ(longEdit->text(), stored);
    QTest::keyClick(longEdit, Qt::Key_Backspace);
    QTest::keyClick(longEdit, Qt::Key_X);
    EXPECT_EQ(longEdit->text(), stored.left(24));
}

// A double click on a root's label renames it; on its expand button the tree expands
// it as usual and the selected node is edited.
TEST_F(FrameFixture, DoubleClickOnARootRenamesWithFormTextsAndOnlyTheExpandButtonExpands)
{
    appDir.writeCompleteDataSet(sampleInspections(), testerNames());
    const std::string before = read("usertester1.asq");
    auto frame = makeFrame();
    QTreeWidget *tree = showTesterTab(frame.get());
    QTreeWidgetItem *root = tree->topLevelItem(0);
    const QRect row = tree->visualItemRect(root);
    const QPoint label(row.left() + 4, row.center().y()),
        button(row.left() - tree->indentation() / 2, row.center().y());

    QString shown;
    whenModal([&](QWidget *form) {
        shown = saysAndShows(form);
        child<QLineEdit>(form, "sequenceTitle")->setText("changed");
        click(form, "Button1"); // Cancel
    });
    // What a real double click delivers: press, release, then the double-click event.
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, label);
    QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, label);
    EXPECT_EQ(shown, "Tester Name Editor|Tester Name:|WARD A");
    EXPECT_TRUE(frame->dataSet().userTesters[0].name == "WARD A" && !root->isExpanded() &&
                read("usertester1.asq") == before);

    tree->setCurrentItem(tree->topLevelItem(1));
    whenModal([&](QWidget *form) { shown = saysAndShows(form); click(form, "Button1"); });
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, button);
    EXPECT_TRUE(root->isExpanded()); // the first click of the two opens the node
    QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, button);
    const bool expandedAfterDoubleClick = root->isExpanded();
    QApplication::processEvents(); // the edit follows the tree's own handling
    EXPECT_EQ(shown, "Tester Name Editor|Tester Name:|USER TESTER 2");
    EXPECT_TRUE(root->isExpanded() == expandedAfterDoubleClick && sink.messages.empty());
}

// The boxes, the defaults and the row texts are the data set's and the list texts', checked there;
// the lists' wiring over a complete data set is checked with every edit.
TEST_F(FrameFixture, AnEmptyDataFolderReportsFourBoxesShowsTheDefaultsAndReturnToMainWindowSavesThem)
{
    auto frame = makeFrame();
    EXPECT_EQ(sink.messages.size(), 4u);
    EXPECT_EQ(listTexts(frame.get()), QStringList(18, QStringLiteral("<unused>")));
    EXPECT_EQ(rootTexts(frame.get()), (QStringList{"i. USER TESTER 0", "ii. USER TESTER 2", "iii. USER TESTER 4",
                                                   "iv. USER TESTER 6", "v. USER TESTER 8"}));
    EXPECT_FALSE(std::filesystem::exists(appDir.data("mit.dat")));
    sink.messages.clear();
    container.show(), mainView.hide(), frame->show();
    click(frame.get(), "BtnExit");
    EXPECT_TRUE(frame->isHidden() && !mainView.isHidden() && container.updatesEnabled() && sink.messages.empty());
    const TdataSet &data = frame->dataSet();
    EXPECT_EQ(read("mit.dat"), mitBytes(std::vector<TInstr>(1044)));
    EXPECT_EQ(read("inspection.asq"), asqBytes("Physical Inspections", "", data.inspections));
    EXPECT_EQ(read("usertester5.asq"),
              asqBytes("User Tester Autosequences", "USER TESTER 8", data.userTesters[4].sequences));
    EXPECT_FALSE(std::filesystem::exists(appDir.data("testProc.asq"))); // checklists are never written
}

// Selections as a user makes them: the list and tree get a current row from a tab
// switch or keep one after Ctrl+click deselects it, which is not a selection.
TEST_F(FrameFixture, ClearInspectionNeedsASelectedRowNotMerelyACurrentOne)
{
    auto frame = showActive();
    auto *list = child<QListWidget>(frame.get(), "lstIP");
    clickTab(frame.get(), 1);
    auto *tree = child<QTreeWidget>(frame.get(), "LstUTS");
    clickRow(tree, tree->indexFromItem(tree->topLevelItem(1)));
    clickTab(frame.get(), 0);
    // Focus follows into the list and makes row 0 current without selecting it.
    ASSERT_TRUE(QApplication::focusWidget() == list && list->currentRow() == 0 && list->selectedItems().isEmpty());
    mouseClick(frame.get(), "BtnIPClear");
    EXPECT_TRUE(sink.messages.empty() && !frame->dataSet().inspections[0].isUnused());

    // Ctrl+click deselects the row it leaves current; a refresh keeps nothing selected.
    const QModelIndex last = list->model()->index(2, 0);
    clickRow(list, last);
    clickRow(list, last, Qt::ControlModifier);
    ASSERT_TRUE(list->selectedItems().isEmpty() && list->currentRow() == 2);
    mouseClick(frame.get(), "BtnIPClear");
    EXPECT_TRUE(sink.messages.empty() && list->item(2)->text() == "INSULATION - ");
    frame->refreshLists(0);
    EXPECT_TRUE(list->selectedItems().isEmpty());

    // Selected: the question; No keeps the row, Yes clears it in memory only.
    const std::string before = read("inspection.asq");
    clickRow(list, last);
    sink.answers = {MsgAnswer::No, MsgAnswer::Yes};
    mouseClick(frame.get(), "BtnIPClear");
    EXPECT_EQ(list->item(2)->text(), "INSULATION - ");
    mouseClick(frame.get(), "BtnIPClear");
    EXPECT_EQ(sink.messages, (std::vector<Message>{ConfirmClear, ConfirmClear}));
    EXPECT_TRUE(list->item(2)->text() == "<unused>" && list->item(2)->isSelected()); // the cleared row stays selected
    EXPECT_EQ(asqBytes("", "", {frame->dataSet().inspections[2]}), asqBytes("", "", {unusedSequence()}));
    EXPECT_EQ(read("inspection.asq"), before);
}

TEST_F(FrameFixture, ClearSequenceNeedsASequenceNodeSelectedNotMerelyCurrent)
{
    auto frame = showActive();
    clickTab(frame.get(), 1);
    auto *tree = child<QTreeWidget>(frame.get(), "LstUTS");
    clickRow(tree, tree->indexFromItem(tree->topLevelItem(0))); // a tester, not a sequence
    mouseClick(frame.get(), "BtnUTSClear");
    tree->expandItem(tree->topLevelItem(0));
    QTreeWidgetItem *node = tree->topLevelItem(0)->child(0);
    const QModelIndex index = tree->indexFromItem(node);
    EXPECT_FALSE(node->data(0, TtreeNodeDelegate::UnusedRole).toBool());

    clickRow(tree, index);
    clickRow(tree, index, Qt::ControlModifier);
    ASSERT_TRUE(tree->currentItem() == node && tree->selectedItems().isEmpty());
    mouseClick(frame.get(), "BtnUTSClear");
    EXPECT_TRUE(sink.messages.empty() && !frame->dataSet().userTesters[0].sequences[0].isUnused());

    clickRow(tree, index);
    mouseClick(frame.get(), "BtnUTSClear");
    EXPECT_EQ(sink.messages, std::vector<Message>{ConfirmClear});
    EXPECT_TRUE(frame->dataSet().userTesters[0].sequences[0].isUnused() &&
                frame->dataSet().userTesters[0].sequences[0].items[0] == 0);
    EXPECT_TRUE(node->text(0) == "1. <unused>" && node->data(0, TtreeNodeDelegate::UnusedRole).toBool());

    // The nodes stay as built when a reloaded tester file holds fewer sequences:
    // a node past them clears nothing.
    appDir.writeData("usertester1.asq", asqBytes("User Tester Autosequences", "SHORT",
                                                 {sequence("A", "B", {1}), sequence("C", "D", {2})}));
    frame->ReloadData();
    ASSERT_EQ(tree->topLevelItem(0)->childCount(), 12);
    EXPECT_EQ(tree->topLevelItem(0)->text(0) + "|" + tree->topLevelItem(0)->child(1)->text(0), "i. SHORT|2. C - D");
    tree->setCurrentItem(tree->topLevelItem(0)->child(5));
    ASSERT_TRUE(tree->topLevelItem(0)->child(5)->isSelected());
    sink.messages.clear();
    mouseClick(frame.get(), "BtnUTSClear");
    EXPECT_TRUE(sink.messages.empty() && frame->dataSet().userTesters[0].sequences.size() == 2u);
}

// Another program writes the data folder while the frame holds its copy; which
// version a save keeps is the data set's rule, checked there.
TEST_F(FrameFixture, TheFramesSaveAsksAboutAnotherProgramsChangeAndShowsTheVersionKept)
{
    auto frame = makeSampleFrame();
    // Changed on both sides: the user chooses, here the other program's version.
    auto *list = child<QListWidget>(frame.get(), "lstIP");
    list->setCurrentRow(0);
    click(frame.get(), "BtnIPClear");
    const std::string theirs = read("inspection.asq").replace(130, 6, "THEIRS");
    appDir.writeData("inspection.asq", theirs);
    sink.answers = {MsgAnswer::No};
    sink.messages.clear();
    click(frame.get(), "BtnBackup");
    EXPECT_TRUE(sink.messages.at(0).caption == "Data File Changed" && read("inspection.asq") == theirs);
    EXPECT_TRUE(list->item(0)->text().startsWith("THEIRS")) << list->item(0)->text().toStdString();
}
