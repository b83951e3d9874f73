// The checkitem database editor driven through its controls against the demo
// definition files: what it shows, the edit cycle, categories, filter, sort,
// delete, the CSV files, closing, and the frame that opens it.
#include "AutoSequenceEditorFrame.h"
#include "InstEditSupport.h"
#include "TInstrDatabase.h"
#include "TdataSet.h"
#include "TguiMessageSink.h"
#include "TinstGridHeader.h"
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>

namespace {
const Message FatalError{"FATAL ERROR",
                         "Fatal Error - Invalid Checkitem\n\nIt appears that either the master checkitem database or "
                         "the database files are corrupt.\nPlease try re-starting the program.  If the problem "
                         "persists, please contact your software vendor.\n\nDO NOT sync with the safety analyzer!",
                         MsgIcon::Exclamation};
const Message NoDefinitions{"ERROR!", "Warning!\nCheckitem Database Files Cannot Be Found Or Are Corrupt!\nPlease "
                                      "restart program.\nIf this problem persists, contact your software vendor."};
const Message DatabaseFull{"Checkitem Database Full",
                           "Warning: checkitem database full!\nCheckitem cannot be added.\n\nPlease delete one or "
                           "more existing checkitems.",
                           MsgIcon::Exclamation};
const QStringList BrowsingEnabled{"btnSync", "btnHelp", "btnOk", "btnImport", "btnDelete", "btnNewInst",
                                  "btnEditInst", "btnFilter", "instList", "btnPrint", "btnExport"};
const QStringList EditingEnabled{"btnExport", "lblOp", "lstOp", "lblCat", "lstCat", "btnNewCat",
                                 "btnEditCat", "btnUpdate", "btnCancel", "pnlInst"};
} // namespace

TEST_F(EditorFixture, OpensOnTheFirstSlotsWithNamesOrderAndTrace)
{
    auto editor = open();
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "2", "3", "5"}));
    EXPECT_EQ(column(editor.get(), 1), (QStringList{"Earth bond", "", "Visual inspection", "Functional checks"}));
    EXPECT_EQ(column(editor.get(), 2), (QStringList{"M - Measure", "P - Pass/Fail", "K - OK Prompt", "C - Control"}));
    EXPECT_EQ(column(editor.get(), 3).front(), QString::fromUtf8("EB»0»5"));
    EXPECT_EQ(comboItems(editor.get(), "lstOp"),
              (QStringList{"P - Pass/Fail", "I - Input", "E - Data Entry", "K - OK Prompt", "T - Stopwatch",
                           "D - Delay", "C - Control", "R - Remote w Entry", "M - Measure", "L - Meas. w Limits"}));
    const QStringList categories = comboItems(editor.get(), "lstCat");
    EXPECT_EQ(categories.mid(0, 3), (QStringList{" ", "Visual inspection", "B"}));
    EXPECT_EQ(categories.size(), 27);
    EXPECT_EQ(TempDir::read("lstOpChange.log"), "revOpComboMap\n  0 - P\n  1 - I\n  2 - E\n  3 - K\n  4 - T\n"
                                                "  5 - D\n  6 - C\n  7 - R\n  8 - M\n  9 - L\n");

    EXPECT_EQ(editor->windowTitle(), "Checkitem Database");
    EXPECT_EQ(get<QPushButton>(editor.get(), "btnSync")->text(), "Sync\nWith\nKT930");
    EXPECT_EQ(get<QToolButton>(editor.get(), "btnUpdate")->toolTip(), "Update Checkitem");
    EXPECT_EQ(get<QToolButton>(editor.get(), "btnCancel")->toolTip(), "Cancel Edit");
    EXPECT_EQ(get<QGroupBox>(editor.get(), "pnlInst")->title(), "Checkitem");
    EXPECT_EQ(enabledControls(editor.get()), BrowsingEnabled);
    EXPECT_EQ(editor->focusWidget(), get(editor.get(), "btnNewInst"));
    // The record of the first row stands in its op code's panel.
    EXPECT_EQ(fieldTexts(editor.get()), (QStringList{"EB", "0", "5"}));
    EXPECT_EQ(get<QComboBox>(editor.get(), "lstCat")->currentIndex(), 5);
    EXPECT_EQ(header(editor.get())->sortColumn(), 0);
}

TEST_F(EditorFixture, ChecklistModeOffersTheAutosequenceOpCodeFirst)
{
    db[5].assign(' ', 'A', "UT203");
    auto editor = open(true);
    EXPECT_EQ(comboItems(editor.get(), "lstOp").front(), "A - Autosequence");
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "2", "3", "5", "6"}));
}

TEST_F(EditorFixture, MissingOrCorruptDefinitionFilesAreReported)
{
    // A field line the panel cannot read ends the panel building; the files read so far serve.
    appDir.writeData("zz.in", "Z - Zap\nN 11\n\"Level\"\t\"\"\n");
    {
        auto editor = open();
        EXPECT_EQ(sink.messages, (std::vector<Message>{{"ERROR!", "Warning!\nCheckitem Database Files Appear Corrupt!\n"
                                                                 "Please restart program.\nIf this problem persists, "
                                                                 "contact your software vendor."}}));
        EXPECT_EQ(comboItems(editor.get(), "lstOp").size(), 10);
    }
    sink.messages.clear();
    appDir.writeData("zz.in", "Z\n");
    EXPECT_THROW(open(), TinstructionEditorFormException);
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"ERROR", "An unexpected error occured while processing "
                                                                + appDir.data("zz.in").string()
                                                                + ".\nThe file is corrupt.  Please contact your "
                                                                  "product's distributor immediately."}}));

    sink.messages.clear();
    removeDefinitions();
    try {
        open();
        ADD_FAILURE() << "no exception";
    } catch (const TinstructionEditorFormException &e) {
        EXPECT_EQ(e.file, "instEdit");
        EXPECT_GT(e.line, 0);
    }
    EXPECT_EQ(sink.messages, (std::vector<Message>{NoDefinitions, FatalError}));
}

TEST_F(EditorFixture, WithoutDescriptorsTheCategoriesAreBareLetters)
{
    std::filesystem::remove(appDir.data("catdes.dat"));
    auto editor = open();
    EXPECT_EQ(sink.messages,
              (std::vector<Message>{{"ERROR", "There has been an error initializing the category descriptors\rThis "
                                              "will not affect the operation of the program, however all\rinstructions "
                                              "will be displayed without a category name."}}));
    EXPECT_EQ(comboItems(editor.get(), "lstCat").mid(0, 2), (QStringList{"A", "B"}));
    EXPECT_EQ(column(editor.get(), 1), (QStringList{"E", "", "A", "F"}));
}

TEST_F(EditorFixture, UnknownOpCodeIsRepairedSilentlyWhenShown)
{
    db[0].opCode = 'z';
    auto editor = open();
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(bytesOf(db[0]), std::string("EC") + std::string(41, ' ') + '\0');
    EXPECT_EQ(column(editor.get(), 2).front(), "C - Control");
}

TEST_F(EditorFixture, EditThroughThePanelFiltersKeysClampsAndUpdateStoresPaddedText)
{
    auto editor = open();
    clickRow(editor.get(), 0);
    click(editor.get(), "btnEditInst");
    EXPECT_EQ(enabledControls(editor.get()), EditingEnabled);
    EXPECT_EQ(QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString(), "field0");
    retype(editor.get(), "field0", "ir");
    retype(editor.get(), "field1", "12x00.5"); // digits only: 12005, above the range
    retype(editor.get(), "field2", "-0");
    choose(editor.get(), "lstCat", 9);
    EXPECT_EQ(db[0].category, 'I'); // written at once
    click(editor.get(), "btnUpdate");

    EXPECT_EQ(bytesOf(db[0]), bytesOf(TInstr('I', 'M', padded("IR\t1000\t1"))));
    EXPECT_EQ(fieldTexts(editor.get()), (QStringList{"IR", "1000", "1"}));
    EXPECT_EQ(enabledControls(editor.get()), BrowsingEnabled);
    EXPECT_FALSE(get(editor.get(), "btnUpdate")->isVisible());
    EXPECT_EQ(row(editor.get(), 0), (QStringList{"1", "Insulation", "M - Measure",
                                                 QString::fromUtf8("IR»1000»1") + QString(32, ' ')}));
}

TEST_F(EditorFixture, OpCodeAndCategoryChangeAtOnceAndCancelRestoresThem)
{
    const std::string before = bytesOf(db[1]);
    auto editor = open();
    doubleClickRow(editor.get(), 1);
    choose(editor.get(), "lstOp", 6); // C - Control
    EXPECT_EQ(db[1].opCode, 'C');
    EXPECT_EQ(fieldTexts(editor.get()), (QStringList{"", ""})); // the old text does not fit
    EXPECT_TRUE(shownField(editor.get(), "field1")->isEnabled());
    choose(editor.get(), "lstCat", 5);
    EXPECT_EQ(db[1].category, 'E');
    click(editor.get(), "btnCancel");
    EXPECT_EQ(bytesOf(db[1]), before);
    EXPECT_EQ(enabledControls(editor.get()), BrowsingEnabled);
    EXPECT_EQ(row(editor.get(), 1), (QStringList{"2", "", "P - Pass/Fail", "Mains plug intact?"}));
}

TEST_F(EditorFixture, NewCheckitemTakesTheFirstFreeSlotAndStaysAfterCancel)
{
    auto editor = open();
    click(editor.get(), "btnNewInst");
    EXPECT_EQ(bytesOf(db[3]), bytesOf(TInstr(' ', 'C', "")));
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "2", "3", "5", "4"}));
    EXPECT_EQ(enabledControls(editor.get()), EditingEnabled);
    click(editor.get(), "btnCancel");
    EXPECT_EQ(bytesOf(db[3]), bytesOf(TInstr(' ', 'C', "")));
}

TEST_F(EditorFixture, The251stCheckitemIsRefused)
{
    for (std::size_t usedSlots : {std::size_t(250), TInstrDatabase::SlotCount}) {
        for (std::size_t i = 0; i < usedSlots; ++i)
            db[i].assign(' ', 'P', "Question " + std::to_string(i));
        const std::string before = mitBytes(db.slots());
        auto editor = open();
        sink.messages.clear();
        click(editor.get(), "btnNewInst");
        EXPECT_EQ(sink.messages, (std::vector<Message>{DatabaseFull})) << usedSlots;
        EXPECT_TRUE(mitBytes(db.slots()) == before);
        EXPECT_EQ(enabledControls(editor.get()), BrowsingEnabled);
    }
}

TEST_F(EditorFixture, DeleteListsTheSequencesAndDeletesOnlyOnYes)
{
    appDir.writeData("inspection.asq", asqBytes("Physical Inspections", "Ward 3",
                                                {sequence("EARTH", "BOND", {1, 2}), sequence("LEAKAGE", "", {1})}));
    auto editor = open();
    const std::string before = bytesOf(db[0]);
    for (const char *answer : {"btnNo", "btnYes"}) {
        QString listed;
        whenModal([&listed, answer](QWidget *dialog) {
            listed = get<QPlainTextEdit>(dialog, "affectedSequences")->toPlainText();
            click(dialog, answer);
        });
        click(editor.get(), "btnDelete");
        EXPECT_EQ(listed.toStdString(), "Physical Inspections - Ward 3\n  EARTH              - BOND              \n"
                                        "  LEAKAGE            -                   ");
    }
    EXPECT_NE(bytesOf(db[0]), before);
    EXPECT_TRUE(db[0].isFree());
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"2", "3", "5"}));
}

TEST_F(EditorFixture, DeletingTheLastCheckitemDisablesEditAndDelete)
{
    db.clearAll();
    db[7].assign(' ', 'P', "Only one");
    auto editor = open();
    whenModal([](QWidget *dialog) { click(dialog, "btnNo"); }); // no .asq file: deleted anyway
    click(editor.get(), "btnDelete");
    EXPECT_TRUE(db[7].isFree());
    EXPECT_EQ(row(editor.get(), 0), (QStringList{"", "", "", ""}));
    EXPECT_FALSE(get(editor.get(), "btnEditInst")->isEnabled());
    EXPECT_FALSE(get(editor.get(), "btnDelete")->isEnabled());
}

TEST_F(EditorFixture, CategoriesAreNamedAndRenamedAndOkWritesThem)
{
    auto editor = open();
    clickRow(editor.get(), 2);
    click(editor.get(), "btnEditInst");
    nameCategory("Visual checks");
    click(editor.get(), "btnEditCat");
    EXPECT_EQ(comboItems(editor.get(), "lstCat")[1], "Visual checks");
    choose(editor.get(), "lstCat", 0);
    click(editor.get(), "btnEditCat");
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"Cannot Edit Category",
                                                   "You cannot edit this category.\nPlease change the checkitem's "
                                                   "category.",
                                                   MsgIcon::Exclamation}}));
    nameCategory("Bench tests"); // "B", the first letter without a name
    click(editor.get(), "btnNewCat");
    EXPECT_EQ(comboItems(editor.get(), "lstCat")[2], "Bench tests");
    EXPECT_EQ(get<QComboBox>(editor.get(), "lstCat")->currentIndex(), 0);
    click(editor.get(), "btnUpdate");
    EXPECT_EQ(column(editor.get(), 1)[2], ""); // item 0 took the category away
    click(editor.get(), "btnOk");
    EXPECT_EQ(editor->result(), QDialog::Accepted);
    EXPECT_EQ(TempDir::read(appDir.data("catdes.dat")),
              "A, Visual checks\nB, Bench tests\nE, Earth bond\nF, Functional checks\nI, Insulation\n"
              "L, Leakage current\nP, Operator prompts\n");
}

TEST_F(EditorFixture, FilterAppliesOnOkAndItsCancelledSetsAtTheNextSort)
{
    auto editor = open();
    runFilter(editor.get(), "btnOk", [](QWidget *dialog) { get<QComboBox>(dialog, "lstBasicCat")->setCurrentIndex(6); });
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"5"}));

    runFilter(editor.get(), "btnOk", [](QWidget *dialog) {
        get<QTabWidget>(dialog, "filterSelect")->setCurrentIndex(1);
        auto *ops = get<QListWidget>(dialog, "lstAdvOp");
        for (const char *name : {"K - OK Prompt", "M - Measure"})
            ops->findItems(QString::fromLatin1(name), Qt::MatchExactly).front()->setCheckState(Qt::Checked);
        click(dialog, "btnSelectAllCat");
    });
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "3"}));

    runFilter(editor.get(), "btnCancel", [](QWidget *dialog) {
        auto *ops = get<QComboBox>(dialog, "lstBasicOp");
        ops->setCurrentIndex(ops->findText("P - Pass/Fail"));
    });
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "3"}));
    clickHeader(editor.get(), 3); // re-applies what the cancelled dialog left
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"2"}));

    runFilter(editor.get(), "btnOk", [](QWidget *dialog) { click(dialog, "btnSelectAllCat"); });
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "3", "5"})); // slot 1 has no category
}

TEST_F(EditorFixture, HeaderClicksSortAndMoveTheSortPicture)
{
    struct Click {
        int column;
        int state;
        QStringList numbers;
    };
    const std::vector<Click> clicks{
        {0, 2, {"5", "3", "2", "1"}}, {0, 1, {"1", "2", "3", "5"}}, {1, 3, {"2", "1", "5", "3"}},
        {1, 4, {"3", "5", "1", "2"}}, {2, 5, {"5", "3", "1", "2"}}, {2, 6, {"2", "1", "3", "5"}},
        {3, 6, {"2", "1", "3", "5"}}, {0, 1, {"1", "2", "3", "5"}}};
    auto editor = open();
    const QImage up = QPixmap(":/instEdit/PIC_SORT_UP").toImage(), down = QPixmap(":/instEdit/PIC_SORT_DOWN").toImage();
    for (const Click &c : clicks) {
        clickRow(editor.get(), 2);
        clickHeader(editor.get(), c.column);
        EXPECT_EQ(editor->sortState(), c.state) << c.column;
        EXPECT_EQ(column(editor.get(), 0), c.numbers) << c.state;
        EXPECT_EQ(get<QTableWidget>(editor.get(), "instList")->currentRow(), 0);
        EXPECT_EQ(header(editor.get())->sortColumn(), (c.state - 1) / 2);
        EXPECT_TRUE(header(editor.get())->sortPicture().toImage() == (c.state % 2 ? up : down)) << c.state;
    }
}

TEST_F(EditorFixture, ImportAddsToFreeSlotsAndResetsTheOrder)
{
    appDir.dir().write("more.csv", "b,K,Plug in\r\nZ,P,Tab\there\x01\nno commas here\n");
    auto editor = open();
    clickHeader(editor.get(), 0);
    importFile(editor.get(), "more.csv");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(bytesOf(db[3]), bytesOf(TInstr(' ', 'K', "Plug in")));
    EXPECT_EQ(bytesOf(db[5]), bytesOf(TInstr('Z', 'P', "Tab\there ")));
    EXPECT_EQ(editor->sortState(), 0);
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "2", "3", "4", "5", "6"}));
    EXPECT_EQ(header(editor.get())->sortColumn(), -1);

    importFile(editor.get(), "absent.csv");
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"ERROR", "An error occurred while importing the checkitems.\nAn "
                                                            "error code of -1 was returned - File I/O Error."}}));
}

TEST_F(EditorFixture, ImportIntoAFullDatabaseKeepsWhatFitAndWarns)
{
    for (std::size_t i = 0; i < TInstrDatabase::SlotCount; ++i)
        if (i != 3 && i != 900)
            db[i].assign(' ', 'P', "Question");
    appDir.dir().write("three.csv", "A,K,One\nA,K,Two\nA,K,Three\n");
    auto editor = open();
    importFile(editor.get(), "three.csv");
    EXPECT_EQ(sink.messages,
              (std::vector<Message>{{"OVERFLOW",
                                    "WARNING!\n\nNot all checkitems could be imported because there\nwas insufficient "
                                    "space in the checkitem database to\ninsert all of the checkitems from the "
                                    "specified file.",
                                    MsgIcon::Exclamation}}));
    EXPECT_EQ(db[3].commandText(), "One");
    EXPECT_EQ(db[900].commandText(), "Two");
}

TEST_F(EditorFixture, ExportWritesEverySlotToTheCurrentFolder)
{
    auto editor = open();
    click(editor.get(), "btnExport");
    std::string expected;
    for (const TInstr &slot : db.slots())
        expected += std::string{slot.category, ',', slot.opCode, ','} + slot.commandText() + "\n";
    EXPECT_TRUE(TempDir::read("instList.csv") == expected);
    EXPECT_EQ(TempDir::read("instList.csv").substr(0, 30), std::string("E,M,EB\t0\t5\n ,P,Mains plug intact?\n", 30));
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(EditorFixture, ClosingIsRefusedWhileAnEditIsOpen)
{
    auto editor = open();
    click(editor.get(), "btnEditInst");
    EXPECT_FALSE(editor->close());
    QTest::keyClick(editor.get(), Qt::Key_Escape);
    EXPECT_TRUE(editor->isVisible());
    click(editor.get(), "btnUpdate");
    EXPECT_TRUE(editor->close());
}

TEST_F(EditorFixture, GuardConstructorOnlySaysSo)
{
    TguiMessageSink::setDefaultSink(&sink);
    TinstructionEditorForm guard;
    TguiMessageSink::setDefaultSink(nullptr);
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"Error 0001 - TinstructionEditorForm::TinstructionEditorForm()",
                                                   "Fatal Error - Please contact your software vendor immediately!",
                                                   MsgIcon::Exclamation}}));
    EXPECT_EQ(enabledControls(&guard), QStringList{"btnOk"});
}

TEST_F(EditorFixture, FrameOpensTheEditorFromBothButtonsAndSavesTheCheckitems)
{
    FrameHost frameHost; // its own folder: the frame's complete data set
    copyDemoDefinitions(frameHost.appDir);
    frameHost.appDir.writeCompleteDataSet({sequence("EARTH", "BOND", {1})}, {"A", "B", "C", "D", "E"});
    TAutoSeqEditFrame frame(nullptr, &frameHost.host, &frameHost.hostData2, &sink);
    for (const char *button : {"BtnInstEd", "BtnInstEd2"}) {
        whenModal([](QWidget *editor) {
            click(editor, "btnNewInst");
            retype(editor, "field0", "mains");
            retype(editor, "field1", "1");
            click(editor, "btnUpdate");
            click(editor, "btnOk");
        });
        click(&frame, button);
    }
    EXPECT_TRUE(sink.messages.empty());
    const std::string saved = TempDir::read(frameHost.appDir.data("mit.dat"));
    ASSERT_EQ(saved.size(), 45936u);
    EXPECT_EQ(saved.substr(44, 88), bytesOf(TInstr(' ', 'C', padded("MAINS\t1"))) + bytesOf(TInstr(' ', 'C', padded("MAINS\t1"))));
    EXPECT_EQ(TempDir::read(frameHost.appDir.data("catdes.dat")), TempDir::read(KT930_TEST_APPDIR "/Data/catdes.dat"));
}
