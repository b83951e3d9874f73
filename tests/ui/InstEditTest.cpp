// The checkitem database editor clicked through once per control; the rules are tested where they live.
#include "instEdit.h"
#include "../e2e/SimulatorUnderTest.h"
#include "AutoSequenceEditorFrame.h"
#include "ProgramRun.h"
#include "RecordingMessageSink.h"
#include "THelpWindow.h"
#include "TInstrDatabase.h"
#include "TcheckitemListModel.h"
#include "TguiMessageSink.h"
#include "TinstGridHeader.h"
#include "UiTestSupport.h"
#include "autoSequenceEditForm.h"
#include <sys/stat.h>

namespace {
using Messages = std::vector<Message>;
const std::string FatalText =
    "Fatal Error - Invalid Checkitem\n\nIt appears that either the master checkitem database or the database files are "
    "corrupt.\nPlease try re-starting the program.  If the problem persists, please contact your software "
    "vendor.\n\nDO NOT sync with the safety analyzer!";
const QStringList Browsing{"btnSync",     "btnHelp",   "btnOk",    "btnImport", "btnDelete", "btnNewInst",
                           "btnEditInst", "btnFilter", "instList", "btnPrint",  "btnExport"};
const QStringList Editing{"btnExport", "lblOp",      "lstOp",     "lblCat",    "lstCat",
                          "btnNewCat", "btnEditCat", "btnUpdate", "btnCancel", "pnlInst"};

QTableView *grid(QWidget *editor) { return child<QTableView>(editor, "instList"); }
TinstGridHeader *header(QWidget *editor) { return qobject_cast<TinstGridHeader *>(grid(editor)->horizontalHeader()); }
QStringList column(QWidget *editor, int c) { return columnTexts(grid(editor), c); }
std::string padded(const std::string &text) { return text + std::string(41 - text.size(), ' '); }
// Every panel has a field0, field1 ...: the ones on show are meant.
QList<QLineEdit *> shownFields(QWidget *editor)
{
    QList<QLineEdit *> shown;
    for (QLineEdit *box : editor->findChildren<QLineEdit *>(QRegularExpression("^field\\d+$")))
        if (box->isVisible())
            shown << box;
    return shown;
}
void retype(QWidget *editor, int field, const QString &keys)
{
    shownFields(editor).value(field)->clear(), QTest::keyClicks(shownFields(editor).value(field), keys);
}
// As a user's pick.
void choose(QWidget *form, const char *list, int index)
{
    child<QComboBox>(form, list)->setCurrentIndex(index), Q_EMIT child<QComboBox>(form, list)->activated(index);
}
QStringList enabledControls(QWidget *editor)
{
    QStringList enabled;
    for (const QString &name : Browsing + Editing)
        if (!enabled.contains(name) && editor->findChild<QWidget *>(name)->isEnabled())
            enabled << name;
    return enabled;
}
QPoint rowCentre(QWidget *editor, int row)
{
    return grid(editor)->visualRect(grid(editor)->model()->index(row, 1)).center();
}
void clickRow(QWidget *editor, int row)
{
    QTest::mouseClick(grid(editor)->viewport(), Qt::LeftButton, {}, rowCentre(editor, row));
}
void clickHeader(QWidget *editor, int c)
{
    QTest::mouseClick(header(editor)->viewport(), Qt::LeftButton, {},
                      QPoint(header(editor)->sectionViewportPosition(c) + 4, 5));
}
void answer(const char *button, std::function<void(QWidget *)> before = [](QWidget *) {})
{
    whenModal([=](QWidget *dialog) { before(dialog), click(dialog, button); });
}

using PdfEditor = PrintsToPdf<TinstructionEditorForm>;

struct Editor : ::testing::Test {
    AppDirScope appDir;
    RecordingMessageSink sink;
    TInstrDatabase db;
    TPluginHostInfo host;
    std::filesystem::path previousFolder = std::filesystem::current_path();

    Editor()
    {
        appDir.copyDemoDefinitions(true);
        std::filesystem::current_path(appDir.dir().path()); // the trace and the export go here
        db[0].assign('E', 'M', "EB\t0\t5");
        db[1].assign(' ', 'P', "Mains plug intact?");
        db[2].assign('A', 'K', "Disconnect the device");
        db[4].assign('F', 'C', "AUX\t1");
    }
    ~Editor() override { std::filesystem::current_path(previousFolder); }
    std::unique_ptr<PdfEditor> opened; // the last one

    PdfEditor *open(bool checklistMode = false)
    {
        opened = std::make_unique<PdfEditor>(nullptr, checklistMode, &host, &db, &sink);
        return opened->show(), opened.get();
    }
    void importFile(QWidget *editor, const std::string &name)
    {
        whenModal([file = QString::fromStdString((appDir.dir().path() / name).string())](QWidget *dialog) {
            EXPECT_EQ(dialog->objectName(), "instTableOpenDlg");
            // The dialog lists its folder in the background and may select the file it chose
            // last time once the listing comes (a selected row wins over the typed name): clear
            // the selection and type again until the dialog returns the name, and accept in any
            // case, so that a lost race fails the test instead of hanging it.
            auto *files = qobject_cast<QFileDialog *>(dialog);
            for (int tries = 0; tries < 100; ++tries) {
                for (auto *view : dialog->findChildren<QAbstractItemView *>())
                    view->clearSelection();
                child<QLineEdit>(dialog, "fileNameEdit")->setText(file);
                if (files->selectedFiles() == QStringList{file})
                    break;
                QTest::qWait(50);
            }
            EXPECT_EQ(files->selectedFiles(), QStringList{file});
            qobject_cast<QDialog *>(dialog)->accept();
        });
        click(editor, "btnImport");
    }
    static void nameCategory(const QString &name)
    {
        answer("btnOK", [name](QWidget *dialog) { child<QLineEdit>(dialog, "txtName")->setText(name); });
    }
};
} // namespace

// The trace goes into the folder the program runs in: never through a link, nor into a fifo.
TEST_F(Editor, OpensOnTheListWithTheOpCodesInListOrderTheTraceAndTheSilentRepair)
{
    db[0].opCode = 'z'; // no definition file: the first op code with a blank command once shown
    PdfEditor *editor = open();
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(bytesOf(db[0]), "EC" + std::string(41, ' ') + '\0');
    EXPECT_EQ(column(editor, 2), (QStringList{"C - Control", "P - Pass/Fail", "K - OK Prompt", "C - Control"}));
    EXPECT_EQ(comboTexts(editor, "lstOp"),
              (QStringList{"P - Pass/Fail", "I - Input", "E - Data Entry", "K - OK Prompt", "T - Stopwatch",
                           "D - Delay", "C - Control", "R - Remote w Entry", "M - Measure", "L - Meas. w Limits"}));
    EXPECT_EQ(
        TempDir::read("lstOpChange.log"),
        "revOpComboMap\n  0 - P\n  1 - I\n  2 - E\n  3 - K\n  4 - T\n  5 - D\n  6 - C\n  7 - R\n  8 - M\n  9 - L\n");
    EXPECT_EQ(child<QPushButton>(editor, "btnSync")->text(), "Sync\nWith\nKT930");
    EXPECT_EQ(enabledControls(editor), Browsing);
    EXPECT_TRUE(editor->focusWidget() == child(editor, "btnNewInst") && header(editor)->sortColumn() == 0);
    std::filesystem::remove("lstOpChange.log");
    std::filesystem::create_symlink(appDir.dir().write("victim", "kept"), "lstOpChange.log");
    open();
    EXPECT_EQ(TempDir::read(appDir.dir().path() / "victim"), "kept");
    std::filesystem::remove("lstOpChange.log");
    ASSERT_EQ(::mkfifo("lstOpChange.log", 0600), 0);
    open(); // no reader: a blocking open would never return
}

TEST_F(Editor, MissingDescriptorsAndACorruptDefinitionFileAreReported)
{
    std::filesystem::remove(appDir.data("catdes.dat"));
    EXPECT_EQ(child<QComboBox>(open(), "lstCat")->currentText(), "E"); // bare letters
    EXPECT_EQ(sink.messages, (Messages{{"ERROR", CategoryDescriptors::loadErrorText()}}));
    sink.messages.clear();
    appDir.writeData("measure.in", appDir.readData("measure.in") + "\n"); // a blank line after the fields
    const std::string before = mitBytes(db.slots());
    EXPECT_THROW(open(), TinstructionEditorFormException);
    EXPECT_EQ(
        sink.messages,
        (Messages{{"ERROR", "An unexpected error occured while processing " + appDir.data("measure.in").string() +
                                ".\nThe file is corrupt.  Please contact your product's distributor immediately."}}));
    EXPECT_TRUE(mitBytes(db.slots()) == before); // no checkitem of that op code repaired
    sink.messages.clear();
    for (const auto &entry : std::filesystem::directory_iterator(appDir.dir().path() / "Data"))
        std::filesystem::remove(entry.path());
    EXPECT_THROW(open(), TinstructionEditorFormException);
    EXPECT_EQ(sink.messages.front(),
              (Message{"ERROR!",
                       "Warning!\nCheckitem Database Files Cannot Be Found Or Are Corrupt!\nPlease restart program.\n"
                       "If this problem persists, contact your software vendor."}));
    EXPECT_EQ(sink.messages.back(), (Message{"FATAL ERROR", FatalText, MsgIcon::Exclamation}));
}

TEST_F(Editor, EditUpdateStoresThePanelsRecordAndEscapeCancelsPuttingOpCodeAndCategoryBack)
{
    PdfEditor *editor = open();
    click(editor, "btnEditInst");
    EXPECT_TRUE(enabledControls(editor) == Editing && editor->focusWidget() == shownFields(editor)[0]);
    child(editor, "lstCat")->setFocus(); // then Tab: the fields on show, the tick, the cross
    QStringList tabbed; // hidden panels' fields take no focus
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(editor->focusWidget(), Qt::Key_Tab), tabbed << editor->focusWidget()->objectName();
    EXPECT_EQ(tabbed, (QStringList{"field0", "field1", "field2", "btnUpdate", "btnCancel"}));
    retype(editor, 0, "ir");
    choose(editor, "lstCat", 9);
    EXPECT_EQ(db[0].category, 'I'); // at once
    click(editor, "btnUpdate");
    EXPECT_EQ(bytesOf(db[0]), bytesOf(TInstr('I', 'M', padded("IR\t0\t5"))));
    EXPECT_TRUE(column(editor, 1)[0] == "Insulation" && enabledControls(editor) == Browsing);

    const std::string before = bytesOf(db[1]);
    clickRow(editor, 1);
    QTest::mouseDClick(grid(editor)->viewport(), Qt::LeftButton, {}, rowCentre(editor, 1));
    choose(editor, "lstOp", 6); // C - Control
    EXPECT_TRUE(db[1].opCode == 'C' && shownFields(editor)[1]->isEnabled());
    choose(editor, "lstCat", 5);
    EXPECT_FALSE(editor->close()); // not while an edit is open
    shownFields(editor)[0]->setFocus();
    QTest::keyClick(shownFields(editor)[0], Qt::Key_Escape); // the cross
    EXPECT_TRUE(bytesOf(db[1]) == before && enabledControls(editor) == Browsing);
}

// A command that does not fit its op code's fields is said once and kept until typed over.
TEST_F(Editor, UnfitCommandsAreReportedOnceAndKeptUntilTheFieldsAreTyped)
{
    const std::string kept =
        ".\nThe command is kept as it is. To replace it, type new values into the fields and press Update.";
    const struct {
        char opCode;
        const char *command, *says;
    } cases[] = {{'C', "MAINS\t-1", "\"C - Control\": a value does not suit the type of its field"},
                 {'M', "IR\t500", "\"M - Measure\": it has fewer values than the op code has fields"},
                 {'K', "Press\tOK", "\"K - OK Prompt\": it has more values than the op code has fields"}};
    for (const auto &c : cases) {
        db[3].assign('B', c.opCode, c.command);
        const std::string before = mitBytes(db.slots());
        sink.messages.clear();
        PdfEditor *editor = open();
        clickRow(editor, 3), clickRow(editor, 0), clickRow(editor, 3);
        click(editor, "btnEditInst");
        click(editor, "btnUpdate");
        EXPECT_TRUE(mitBytes(db.slots()) == before) << c.command;
        const std::string says = "The command of checkitem 4 does not fit the fields of " + std::string(c.says) + kept;
        EXPECT_EQ(sink.messages, (Messages{{"Command Does Not Fit", says, MsgIcon::Exclamation}}));
        click(editor, "btnEditInst");
        retype(editor, 0, "Z");
        QTest::keyClick(shownFields(editor)[0], Qt::Key_Return); // the tick
        EXPECT_EQ(db[3].command[0], 'Z');
    }
}

TEST_F(Editor, NewCheckitemStaysAfterCancelAndThe251stIsRefused)
{
    PdfEditor *editor = open();
    click(editor, "btnNewInst");
    EXPECT_TRUE(column(editor, 0) == (QStringList{"1", "2", "3", "5", "4"}) && enabledControls(editor) == Editing);
    click(editor, "btnCancel");
    EXPECT_EQ(bytesOf(db[3]), bytesOf(TInstr(' ', 'C', "")));
    for (std::size_t used : {std::size_t(250), TInstrDatabase::SlotCount}) { // free slots only above 249, none
        for (std::size_t i = 0; i < used; ++i)
            db[i].assign(' ', 'P', "Question");
        const std::string before = mitBytes(db.slots());
        sink.messages.clear();
        click(open(), "btnNewInst");
        EXPECT_EQ(sink.messages, (Messages{{"Checkitem Database Full",
                                            "Warning: checkitem database full!\nCheckitem cannot be "
                                            "added.\n\nPlease delete one or more existing checkitems.",
                                            MsgIcon::Exclamation}}));
        EXPECT_TRUE(mitBytes(db.slots()) == before);
    }
}

// Edit and Delete act on the row the edit area shows: Ctrl+click does not unselect it.
TEST_F(Editor, DeleteAsksAndTheLastOneDisablesEditAndDelete)
{
    appDir.writeData("inspection.asq", asqBytes("Physical Inspections", "Ward 3", {sequence("EARTH", "BOND", {3})}));
    PdfEditor *editor = open();
    clickRow(editor, 2);
    QTest::mouseClick(grid(editor)->viewport(), Qt::LeftButton, Qt::ControlModifier, rowCentre(editor, 2));
    EXPECT_EQ(grid(editor)->selectionModel()->selectedRows().value(0).row(), 2);
    for (const char *reply : {"btnNo", "btnYes"}) {
        answer(reply), click(editor, "btnDelete");
        EXPECT_EQ(db[2].isFree(), reply == std::string("btnYes"));
    }
    std::filesystem::remove(appDir.data("inspection.asq"));
    for (int left = 3; left > 0; --left)
        answer("btnNo"), click(editor, "btnDelete"); // without .asq files it goes anyway
    EXPECT_EQ(column(editor, 0), QStringList{""});
    EXPECT_FALSE(child(editor, "btnEditInst")->isEnabled() || child(editor, "btnDelete")->isEnabled());
}

TEST_F(Editor, CategoriesAreNamedAndOkWritesThemOrSaysWhyNot)
{
    std::filesystem::permissions(appDir.data("catdes.dat"), std::filesystem::perms::owner_read);
    PdfEditor *editor = open();
    clickRow(editor, 2);
    click(editor, "btnEditInst");
    nameCategory("Visual checks");
    click(editor, "btnEditCat");
    choose(editor, "lstCat", 0);
    click(editor, "btnEditCat");
    nameCategory("Bench tests"); // "B", the first letter without a name
    click(editor, "btnNewCat");
    EXPECT_EQ(comboTexts(editor, "lstCat").mid(0, 3), (QStringList{" ", "Visual checks", "Bench tests"}));
    click(editor, "btnUpdate"), click(editor, "btnOk");
    EXPECT_EQ(
        sink.messages,
        (Messages{{"Cannot Edit Category", "You cannot edit this category.\nPlease change the checkitem's category.",
                   MsgIcon::Exclamation},
                  {"File Error", "The category names could not be saved to " + appDir.data("catdes.dat").string() +
                                     ".\nCheck that it is a file you may write to, then press OK again."}}));
    EXPECT_TRUE(editor->isVisible());
    std::filesystem::permissions(appDir.data("catdes.dat"), std::filesystem::perms::owner_all);
    click(editor, "btnOk");
    EXPECT_EQ(editor->result(), QDialog::Accepted);
    EXPECT_EQ(TempDir::read(appDir.data("catdes.dat")),
              "A, Visual checks\nB, Bench tests\nE, Earth bond\nF, Functional checks\nI, Insulation\nL, Leakage "
              "current\nP, Operator prompts\n");
}

// Escape and the close button drop a renamed category only when the user says so.
TEST_F(Editor, ClosingAfterRenamingACategoryAsksWhetherToSaveIt)
{
    const std::string before = appDir.readData("catdes.dat");
    for (MsgAnswer reply : {MsgAnswer::No, MsgAnswer::Yes}) {
        PdfEditor *editor = open();
        click(editor, "btnEditInst");
        nameCategory("Renamed");
        click(editor, "btnEditCat");
        click(editor, "btnUpdate");
        sink.answers = {reply};
        reply == MsgAnswer::No ? QTest::keyClick(editor, Qt::Key_Escape) : void(editor->close());
        EXPECT_EQ(sink.messages.back(), (Message{"Checkitem Database", "Save the changed category names?",
                                                 MsgIcon::Question, MsgButtons::YesNo}));
        EXPECT_FALSE(editor->isVisible());
        EXPECT_EQ(appDir.readData("catdes.dat") != before, reply == MsgAnswer::Yes);
    }
}

// The second click of the double click that opened the editor must not press Help;
// a large font still leaves both editors within the screen.
TEST_F(Editor, OpeningClicksAreIgnoredAndTheEditorsFitTheScreen)
{
    QStyleHints *hints = QGuiApplication::styleHints();
    const int interval = hints->mouseDoubleClickInterval();
    hints->setMouseDoubleClickInterval(60000);
    const QFont font = QApplication::font();
    QApplication::setFont(QFont(font.family(), font.pointSize() * 3));
    PdfEditor *editor = open();
    mouseClick(editor, "btnHelp");
    EXPECT_TRUE(editor->findChildren<THelpWindow *>().isEmpty());
    hints->setMouseDoubleClickInterval(interval);
    Tautosequence seq = sequence("EARTH", "BOND");
    TsequenceEditor sequenceEditor(nullptr, &host, &db, seq, [] {}, false, &sink);
    sequenceEditor.show();
    for (QWidget *window : std::initializer_list<QWidget *>{editor, &sequenceEditor})
        EXPECT_TRUE(QRect(QPoint(), window->screen()->availableGeometry().size())
                        .contains(QRect(QPoint(), window->size().expandedTo(window->minimumSize()))));
    QApplication::setFont(font);
}

// A filter applies on OK; what a cancelled dialog left applies at the next sort.
TEST_F(Editor, FilterAndHeaderClicksRefillTheListAndMoveTheSortPicture)
{
    PdfEditor *editor = open();
    answer("btnOk", [](QWidget *dialog) { child<QComboBox>(dialog, "lstBasicCat")->setCurrentIndex(6); });
    click(editor, "btnFilter");
    EXPECT_EQ(column(editor, 0), (QStringList{"5"}));
    answer("btnCancel", [](QWidget *dialog) {
        choose(dialog, "lstBasicOp", comboTexts(dialog, "lstBasicOp").indexOf("P - Pass/Fail"));
    });
    click(editor, "btnFilter");
    EXPECT_EQ(column(editor, 0), (QStringList{"5"}));
    clickHeader(editor, 0);
    EXPECT_TRUE(column(editor, 0) == QStringList{"2"} && editor->checkitemList().sortState().number() == 2 &&
                grid(editor)->currentIndex().row() == 0);
    EXPECT_TRUE(header(editor)->sortPicture().toImage() == QPixmap(":/instEdit/PIC_SORT_DOWN").toImage());
}

TEST_F(Editor, ImportAddsToFreeSlotsResetsTheOrderAndReportsMissingFileAndOverflow)
{
    appDir.dir().write("more.csv", "b,K,Plug in\r\nZ,P,Tab\there\x01\n");
    PdfEditor *editor = open();
    clickHeader(editor, 0);
    importFile(editor, "more.csv");
    EXPECT_EQ(bytesOf(db[3]) + bytesOf(db[5]),
              bytesOf(TInstr(' ', 'K', "Plug in")) + bytesOf(TInstr('Z', 'P', "Tab\there ")));
    EXPECT_TRUE(column(editor, 0) == (QStringList{"1", "2", "3", "4", "5", "6"}) && header(editor)->sortColumn() == -1);
    importFile(editor, "absent.csv");
    for (std::size_t i = 0; i < TInstrDatabase::SlotCount; ++i)
        db[i].assign(' ', 'P', "Question");
    importFile(editor, "more.csv");
    EXPECT_EQ(
        sink.messages,
        (Messages{
            {"ERROR",
             "An error occurred while importing the checkitems.\nAn error code of -1 was returned - File I/O Error."},
            {"OVERFLOW",
             "WARNING!\n\nNot all checkitems could be imported because there\nwas insufficient space in the "
             "checkitem database to\ninsert all of the checkitems from the specified file.",
             MsgIcon::Exclamation}}));
}

TEST_F(Editor, FrameOpensTheEditorFromBothButtonsAndSavesTheCheckitems)
{
    FrameHost frameHost; // a folder of its own with the frame's complete data set
    frameHost.appDir.copyDemoDefinitions(true);
    frameHost.appDir.writeCompleteDataSet({sequence("EARTH", "BOND", {1})}, {"A", "B", "C", "D", "E"});
    TAutoSeqEditFrame frame(nullptr, &frameHost.host, &frameHost.hostData2, &sink);
    for (const char *button : {"BtnInstEd", "BtnInstEd2"}) {
        whenModal([](QWidget *editor) {
            click(editor, "btnNewInst"), retype(editor, 0, "mains"), retype(editor, 1, "1");
            click(editor, "btnUpdate"), click(editor, "btnOk");
        });
        click(&frame, button);
    }
    EXPECT_EQ(TempDir::read(frameHost.appDir.data("mit.dat")).substr(44, 88),
              bytesOf(TInstr(' ', 'C', padded("MAINS\t1"))) + bytesOf(TInstr(' ', 'C', padded("MAINS\t1"))));
}

TEST_F(Editor, SyncReplacesTheDatabaseResetsTheOrderAndWritesTheBackupAndAFailureChangesNothing)
{
    SimulatorUnderTest silent(SimulatorUnderTest::Link::Tcp, KnownDataSet::images(1), {"silent-after=GESI"});
    KnownImages memory = KnownDataSet::images(1);
    TInstrDatabase analyzer;
    analyzer[0].assign('P', 'K', "Synced first");
    analyzer[3].assign(' ', 'D', "30");
    memory.checkitems = mitBytes(analyzer.slots());
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, memory);
    ASSERT_TRUE(silent.ready() && sim.ready());
    const std::string before = mitBytes(db.slots());
    PdfEditor *editor = open();
    clickHeader(editor, 1);
    connectByEthernet(silent.address());
    click(editor, "btnSync");
    EXPECT_EQ(sink.messages, (Messages{{"Data Timed Out.", "A communications timeout occurred.\r\rOperation Canceled.",
                                        MsgIcon::Stop, MsgButtons::Ok, MsgModality::System}}));
    EXPECT_TRUE(mitBytes(db.slots()) == before && !std::filesystem::exists(appDir.data("mit.dat")));
    EXPECT_EQ(column(editor, 0), (QStringList{"2", "1", "5", "3"}));
    connectByEthernet(sim.address());
    click(editor, "btnSync");
    EXPECT_TRUE(mitBytes(db.slots()) == memory.checkitems &&
                TempDir::read(appDir.data("mit.dat")) == memory.checkitems);
    EXPECT_EQ(column(editor, 0), (QStringList{"1", "4"}));
}

// The export's bytes are the database's, checked there.
TEST_F(Editor, PrintsTheListAsItStandsExportsEverySlotAndHelpOpensInAWindowOfTheEditor)
{
    std::filesystem::copy_file(KT930_TEST_APPDIR "/TestProcedureEditor.qch",
                               appDir.dir().path() / "TestProcedureEditor.qch");
    db[5].assign(' ', 'A', "UT203");
    PdfEditor *editor = open(true);
    editor->pdf = appDir.dir().path() / "listing.pdf";
    clickHeader(editor, 0);
    click(editor, "btnPrint");
    EXPECT_TRUE(
        QString::fromStdString(ProgramRun::runTool("pdftotext", {"-layout", editor->pdf.string(), "-"}, ".").out)
            .simplified()
            .startsWith("KT930pc Instruction Listing No. Category Op Code Command 6 A - Autosequence UT203 5 "
                        "Functional checks C - Control AUX»1"));
    click(editor, "btnHelp");
    click(editor, "btnHelp"); // a second press brings the one window back
    ASSERT_EQ(editor->findChildren<THelpWindow *>().size(), 1);
    EXPECT_EQ(editor->findChild<THelpWindow *>()->windowTitle(), "TestProcedureEditor Help");
    click(editor, "btnExport");
    ASSERT_EQ(db.exportText("expected.csv"), 0);
    EXPECT_TRUE(TempDir::read("instList.csv") == TempDir::read("expected.csv"));
}

TEST(EditorGuard, TheParameterlessFormOnlySaysSoAndCanOnlyBeClosed)
{
    ensureApplication();
    RecordingMessageSink sink;
    TguiMessageSink::setDefaultSink(&sink);
    TinstructionEditorForm guard;
    TguiMessageSink::setDefaultSink(nullptr);
    EXPECT_EQ(sink.messages,
              (Messages{{"Error 0001 - TinstructionEditorForm::TinstructionEditorForm()",
                         "Fatal Error - Please contact your software vendor immediately!", MsgIcon::Exclamation}}));
    EXPECT_EQ(enabledControls(&guard), QStringList{"btnOk"});
}
