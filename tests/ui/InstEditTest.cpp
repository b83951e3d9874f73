// The checkitem database editor driven through its controls against the demo
// definition files: display, edit cycle, categories, filter, sort, delete, CSV,
// closing, the frame's buttons, sync against the simulator, print and help.
#include "../e2e/SimulatorUnderTest.h"
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "THelpWindow.h"
#include "TInstrDatabase.h"
#include "TguiMessageSink.h"
#include "TinstGridHeader.h"
#include "TinstListingPrinter.h"
#include "UiTestSupport.h"
#include "autoSequenceEditForm.h"
#include "instEdit.h"
#include "TcheckitemListModel.h"
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QProcess>
#include <QStyleHints>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {
using Messages = std::vector<Message>;
const std::string FatalText = "Fatal Error - Invalid Checkitem\n\nIt appears that either the master checkitem "
                              "database or the database files are corrupt.\nPlease try re-starting the program.  If "
                              "the problem persists, please contact your software vendor.\n\nDO NOT sync with the "
                              "safety analyzer!";
const QStringList Browsing{"btnSync", "btnHelp", "btnOk", "btnImport", "btnDelete", "btnNewInst",
                           "btnEditInst", "btnFilter", "instList", "btnPrint", "btnExport"};
const QStringList Editing{"btnExport", "lblOp", "lstOp", "lblCat", "lstCat", "btnNewCat",
                          "btnEditCat", "btnUpdate", "btnCancel", "pnlInst"};

QTableView *grid(QWidget *editor) { return child<QTableView>(editor, "instList"); }
TinstGridHeader *header(QWidget *editor) { return qobject_cast<TinstGridHeader *>(grid(editor)->horizontalHeader()); }
std::string padded(const std::string &text) { return text + std::string(41 - text.size(), ' '); }

// Every panel has a field0, field1 ...: the one on show is meant.
QList<QLineEdit *> shownFields(QWidget *editor)
{
    QList<QLineEdit *> shown;
    for (QLineEdit *box : editor->findChildren<QLineEdit *>(QRegularExpression("^field\\d+$")))
        if (box->isVisible())
            shown << box;
    return shown;
}
QStringList fieldTexts(QWidget *editor)
{
    QStringList texts;
    for (QLineEdit *box : shownFields(editor))
        texts << box->text();
    return texts;
}
void retype(QWidget *editor, int field, const QString &keys)
{
    QLineEdit *box = shownFields(editor).value(field);
    ASSERT_NE(box, nullptr);
    box->clear();
    QTest::keyClicks(box, keys);
}
// What a user's pick in a drop-down list does.
void choose(QWidget *form, const char *list, int index)
{
    auto *box = child<QComboBox>(form, list);
    box->setCurrentIndex(index);
    Q_EMIT box->activated(index);
}
QStringList column(QWidget *editor, int c) { return columnTexts(grid(editor), c); }
QStringList enabledControls(QWidget *editor)
{
    QStringList enabled;
    for (const QString &name : Browsing + Editing)
        if (!enabled.contains(name) && editor->findChild<QWidget *>(name)->isEnabled())
            enabled << name;
    return enabled;
}
QPoint rowCentre(QWidget *editor, int row) { return grid(editor)->visualRect(grid(editor)->model()->index(row, 1)).center(); }
void clickRow(QWidget *editor, int row) { QTest::mouseClick(grid(editor)->viewport(), Qt::LeftButton, {}, rowCentre(editor, row)); }
void clickHeader(QWidget *editor, int c)
{
    QTest::mouseClick(header(editor)->viewport(), Qt::LeftButton, {},
                      QPoint(header(editor)->sectionViewportPosition(c) + 4, header(editor)->height() / 2));
}

// The editor with its print dialog answered by a PDF file.
class PdfEditor : public TinstructionEditorForm {
public:
    using TinstructionEditorForm::TinstructionEditorForm;
    QString pdf;

protected:
    bool choosePrinter(QPrinter &printer) override
    {
        TinstListingPrinter::preparePdf(printer, pdf);
        return true;
    }
};

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
    std::unique_ptr<PdfEditor> open(bool checklistMode = false)
    {
        auto editor = std::make_unique<PdfEditor>(nullptr, checklistMode, &host, &db, &sink);
        editor->show();
        return editor;
    }
    // Imports through the file dialog: to the application folder, and once its
    // listing is in (it arrives from a thread of its own), the file's name.
    void importFile(QWidget *editor, const QString &name)
    {
        whenModal([folder = QString::fromStdString(appDir.dir().path().string()), name](QWidget *dialog) {
            auto *files = qobject_cast<QFileDialog *>(dialog);
            ASSERT_NE(files, nullptr);
            EXPECT_EQ(files->objectName(), "instTableOpenDlg");
            EXPECT_EQ(files->windowTitle(), "Import Checkitems");
            EXPECT_EQ(files->nameFilters(), QStringList{"Comma Separated Files (*.csv)"});
            files->setDirectory(folder);
            auto *listing = files->findChild<QFileSystemModel *>();
            whenTrue([listing, folder] { return listing->rowCount(listing->index(folder)) > 0; }, [dialog, name] {
                auto *fileName = child<QLineEdit>(dialog, "fileNameEdit");
                fileName->clear();
                QTest::keyClicks(fileName, name);
                child<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Open)->click();
            });
        });
        click(editor, "btnImport");
    }
    static void runFilter(QWidget *editor, const char *button, std::function<void(QWidget *)> choice)
    {
        whenModal([=](QWidget *dialog) {
            choice(dialog);
            click(dialog, button);
        });
        click(editor, "btnFilter");
    }
    static void nameCategory(const QString &name)
    {
        whenModal([name](QWidget *dialog) {
            child<QLineEdit>(dialog, "txtName")->setText(name);
            click(dialog, "btnOK");
        });
    }
};
} // namespace

TEST_F(Editor, OpensOnTheFirstSlotsWithNamesListOrderTraceAndSilentRepair)
{
    db[0].opCode = 'z'; // no definition file: the first op code with a blank command once shown
    auto editor = open();
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(bytesOf(db[0]), "EC" + std::string(41, ' ') + '\0');
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "2", "3", "5"}));
    EXPECT_EQ(column(editor.get(), 1), (QStringList{"Earth bond", "", "Visual inspection", "Functional checks"}));
    EXPECT_EQ(column(editor.get(), 2), (QStringList{"C - Control", "P - Pass/Fail", "K - OK Prompt", "C - Control"}));
    EXPECT_EQ(column(editor.get(), 3)[3], QString::fromUtf8("AUX»1"));
    EXPECT_EQ(comboTexts(editor.get(), "lstOp"),
              (QStringList{"P - Pass/Fail", "I - Input", "E - Data Entry", "K - OK Prompt", "T - Stopwatch",
                           "D - Delay", "C - Control", "R - Remote w Entry", "M - Measure", "L - Meas. w Limits"}));
    EXPECT_EQ(comboTexts(editor.get(), "lstCat").mid(0, 3), (QStringList{" ", "Visual inspection", "B"}));
    EXPECT_EQ(TempDir::read("lstOpChange.log"),
              "revOpComboMap\n  0 - P\n  1 - I\n  2 - E\n  3 - K\n  4 - T\n  5 - D\n  6 - C\n  7 - R\n  8 - M\n  9 - L\n");
    EXPECT_EQ(child<QPushButton>(editor.get(), "btnSync")->text(), "Sync\nWith\nKT930");
    EXPECT_EQ(enabledControls(editor.get()), Browsing);
    EXPECT_EQ(editor->focusWidget(), child(editor.get(), "btnNewInst"));
    EXPECT_EQ(fieldTexts(editor.get()), (QStringList{"", ""}));
    EXPECT_EQ(header(editor.get())->sortColumn(), 0);
}

TEST_F(Editor, TraceNeverFollowsALinkNorOpensAFifo)
{
    const std::filesystem::path victim = appDir.dir().write("victim", "kept");
    std::filesystem::create_symlink(victim, "lstOpChange.log");
    open();
    EXPECT_EQ(TempDir::read(victim), "kept");
    EXPECT_TRUE(std::filesystem::is_symlink("lstOpChange.log"));

    std::filesystem::remove("lstOpChange.log");
    ASSERT_EQ(::mkfifo("lstOpChange.log", 0600), 0);
    open(); // no reader: a blocking open would never return
    EXPECT_EQ(std::filesystem::status("lstOpChange.log").type(), std::filesystem::file_type::fifo);
}

TEST_F(Editor, BrokenDefinitionOrDescriptorFilesAreReported)
{
    std::filesystem::remove(appDir.data("catdes.dat"));
    {
        // Bare letters, still one item per category: the first checkitem's "E" stands at "E".
        auto editor = open();
        EXPECT_EQ(comboTexts(editor.get(), "lstCat").mid(0, 3), (QStringList{" ", "A", "B"}));
        EXPECT_EQ(child<QComboBox>(editor.get(), "lstCat")->currentText(), "E");
    }
    EXPECT_EQ(sink.messages, (Messages{{"ERROR", "There has been an error initializing the category descriptors\r"
                                                 "This will not affect the operation of the program, however all\r"
                                                 "instructions will be displayed without a category name."}}));
    // A header that cannot be read, or a blank line after the fields: no editor, and
    // no checkitem of that op code repaired.
    const std::string before = mitBytes(db.slots());
    for (const std::string &broken : {std::string("Z\n"), appDir.readData("measure.in") + "\n"}) {
        sink.messages.clear();
        appDir.writeData("measure.in", broken);
        EXPECT_THROW(open(), TinstructionEditorFormException);
        EXPECT_EQ(sink.messages, (Messages{{"ERROR", "An unexpected error occured while processing "
                                                         + appDir.data("measure.in").string()
                                                         + ".\nThe file is corrupt.  Please contact your product's "
                                                           "distributor immediately."}}));
        EXPECT_TRUE(mitBytes(db.slots()) == before);
    }
    sink.messages.clear();
    for (const auto &entry : std::filesystem::directory_iterator(appDir.dir().path() / "Data"))
        std::filesystem::remove(entry.path());
    try {
        open();
        ADD_FAILURE() << "no exception";
    } catch (const TinstructionEditorFormException &e) {
        EXPECT_EQ(e.file, "instEdit");
    }
    EXPECT_EQ(sink.messages[0], (Message{"ERROR!", "Warning!\nCheckitem Database Files Cannot Be Found Or Are Corrupt!\n"
                                                   "Please restart program.\nIf this problem persists, contact your "
                                                   "software vendor."}));
    EXPECT_EQ(sink.messages.back(), (Message{"FATAL ERROR", FatalText, MsgIcon::Exclamation}));
}

TEST_F(Editor, UpdateStoresWhatThePanelTookInAndClampedAndTabGoesThroughTheFields)
{
    auto editor = open();
    clickRow(editor.get(), 0);
    click(editor.get(), "btnEditInst");
    EXPECT_EQ(enabledControls(editor.get()), Editing);
    EXPECT_EQ(editor->focusWidget(), shownFields(editor.get())[0]);
    // By keyboard: from the category through the fields shown to the tick and the cross.
    child(editor.get(), "lstCat")->setFocus();
    QList<QWidget *> tabbed;
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(editor->focusWidget(), Qt::Key_Tab);
        tabbed << editor->focusWidget();
    }
    const QList<QLineEdit *> fields = shownFields(editor.get());
    EXPECT_EQ(tabbed, (QList<QWidget *>{fields[0], fields[1], fields[2], child(editor.get(), "btnUpdate"),
                                       child(editor.get(), "btnCancel")}));
    retype(editor.get(), 0, "ir");
    retype(editor.get(), 1, "12x00.5"); // digits only, then above the range
    retype(editor.get(), 2, "-0");
    choose(editor.get(), "lstCat", 9);
    EXPECT_EQ(db[0].category, 'I'); // at once
    click(editor.get(), "btnUpdate");
    EXPECT_EQ(bytesOf(db[0]), bytesOf(TInstr('I', 'M', padded("IR\t1000\t1"))));
    EXPECT_EQ(fieldTexts(editor.get()), (QStringList{"IR", "1000", "1"}));
    EXPECT_EQ(enabledControls(editor.get()), Browsing);
    EXPECT_FALSE(child(editor.get(), "btnUpdate")->isVisible());
    EXPECT_EQ(column(editor.get(), 1)[0], "Insulation");
}

// A command that does not fit its op code's fields is said once and kept until typed over.
TEST_F(Editor, UnfitCommandsAreReportedOnceAndKeptUntilTheFieldsAreTyped)
{
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
        auto editor = open();
        for (int row : {0, 1, 2, 3, 4, 3})
            clickRow(editor.get(), row);
        click(editor.get(), "btnEditInst");
        click(editor.get(), "btnUpdate");
        EXPECT_TRUE(mitBytes(db.slots()) == before) << c.command;
        EXPECT_EQ(sink.messages, (Messages{{"Command Does Not Fit", std::string("The command of checkitem 4 does not fit "
                                            "the fields of ") + c.says + ".\nThe command is kept as it is. To replace "
                                            "it, type new values into the fields and press Update.", MsgIcon::Exclamation}}));
        click(editor.get(), "btnEditInst");
        retype(editor.get(), 0, "Z");
        click(editor.get(), "btnUpdate");
        EXPECT_EQ(db[3].command[0], 'Z');
    }
}

TEST_F(Editor, EnterInTheFieldsIsTheTickAndEscapeTheCross)
{
    auto editor = open();
    for (Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        click(editor.get(), "btnEditInst");
        retype(editor.get(), 0, "ir");
        QTest::keyClick(shownFields(editor.get())[0], key);
        EXPECT_EQ(db[0].commandText().substr(0, 2), key == Qt::Key_Return ? "IR" : "EB");
        EXPECT_EQ(enabledControls(editor.get()), Browsing);
    }
}

TEST_F(Editor, OpCodeAndCategoryChangeAtOnceAndCancelPutsThemBack)
{
    const std::string before = bytesOf(db[1]);
    auto editor = open();
    clickRow(editor.get(), 1);
    QTest::mouseDClick(grid(editor.get())->viewport(), Qt::LeftButton, {}, rowCentre(editor.get(), 1));
    choose(editor.get(), "lstOp", 6); // C - Control
    EXPECT_EQ(db[1].opCode, 'C');
    EXPECT_EQ(fieldTexts(editor.get()), (QStringList{"", ""})); // the old text does not fit
    EXPECT_TRUE(shownFields(editor.get())[1]->isEnabled());
    choose(editor.get(), "lstCat", 5);
    EXPECT_EQ(db[1].category, 'E');
    click(editor.get(), "btnCancel");
    EXPECT_EQ(bytesOf(db[1]), before);
    EXPECT_EQ(enabledControls(editor.get()), Browsing);
}

TEST_F(Editor, NewCheckitemStaysAfterCancelAndThe251stIsRefused)
{
    auto editor = open();
    click(editor.get(), "btnNewInst");
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "2", "3", "5", "4"}));
    EXPECT_EQ(enabledControls(editor.get()), Editing);
    click(editor.get(), "btnCancel");
    EXPECT_EQ(bytesOf(db[3]), bytesOf(TInstr(' ', 'C', "")));
    for (std::size_t used : {std::size_t(250), TInstrDatabase::SlotCount}) { // free slots only above 249, none
        for (std::size_t i = 0; i < used; ++i)
            db[i].assign(' ', 'P', "Question");
        const std::string before = mitBytes(db.slots());
        auto full = open();
        sink.messages.clear();
        click(full.get(), "btnNewInst");
        EXPECT_EQ(sink.messages, (Messages{{"Checkitem Database Full", "Warning: checkitem database full!\nCheckitem "
                                            "cannot be added.\n\nPlease delete one or more existing checkitems.",
                                            MsgIcon::Exclamation}}));
        EXPECT_TRUE(mitBytes(db.slots()) == before);
    }
}

// Edit and Delete act on the row the edit area shows: neither Ctrl+click nor
// Ctrl+Space leaves that row unselected.
TEST_F(Editor, TheShownRowStaysSelected)
{
    auto editor = open();
    clickRow(editor.get(), 2);
    QTest::mouseClick(grid(editor.get())->viewport(), Qt::LeftButton, Qt::ControlModifier, rowCentre(editor.get(), 2));
    EXPECT_EQ(grid(editor.get())->selectionModel()->selectedRows().value(0).row(), 2);
    QTest::keyClick(grid(editor.get()), Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(grid(editor.get())->selectionModel()->selectedRows().value(0).row(), 2);
}

TEST_F(Editor, DeleteListsTheSequencesDeletesOnYesAndTheLastOneDisablesEditAndDelete)
{
    appDir.writeData("inspection.asq", asqBytes("Physical Inspections", "Ward 3", {sequence("EARTH", "BOND", {2, 1})}));
    auto editor = open();
    for (const char *answer : {"btnNo", "btnYes"}) {
        EXPECT_FALSE(db[0].isFree());
        whenModal([answer](QWidget *dialog) {
            EXPECT_EQ(child<QPlainTextEdit>(dialog, "affectedSequences")->toPlainText().toStdString(),
                      "Physical Inspections - Ward 3\n  EARTH              - BOND              ");
            click(dialog, answer);
        });
        click(editor.get(), "btnDelete");
    }
    EXPECT_TRUE(db[0].isFree());
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"2", "3", "5"}));
    std::filesystem::remove(appDir.data("inspection.asq"));
    for (int left = 3; left > 0; --left) {
        whenModal([](QWidget *dialog) { // without .asq files it goes anyway
            EXPECT_EQ(child<QPlainTextEdit>(dialog, "affectedSequences")->toPlainText(), "No Autosequences Found!");
            click(dialog, "btnNo");
        });
        click(editor.get(), "btnDelete");
    }
    EXPECT_EQ(column(editor.get(), 0), QStringList{""});
    EXPECT_FALSE(child(editor.get(), "btnEditInst")->isEnabled() || child(editor.get(), "btnDelete")->isEnabled());
}

TEST_F(Editor, CategoriesAreNamedAndRenamedAndOkWritesThem)
{
    auto editor = open();
    clickRow(editor.get(), 2);
    click(editor.get(), "btnEditInst");
    nameCategory("Visual checks");
    click(editor.get(), "btnEditCat");
    choose(editor.get(), "lstCat", 0);
    click(editor.get(), "btnEditCat");
    EXPECT_EQ(sink.messages, (Messages{{"Cannot Edit Category",
                                        "You cannot edit this category.\nPlease change the checkitem's category.",
                                        MsgIcon::Exclamation}}));
    nameCategory("Bench tests"); // "B", the first letter without a name
    click(editor.get(), "btnNewCat");
    EXPECT_EQ(comboTexts(editor.get(), "lstCat").mid(0, 3), (QStringList{" ", "Visual checks", "Bench tests"}));
    click(editor.get(), "btnUpdate");
    click(editor.get(), "btnOk");
    EXPECT_EQ(editor->result(), QDialog::Accepted);
    EXPECT_EQ(TempDir::read(appDir.data("catdes.dat")), "A, Visual checks\nB, Bench tests\nE, Earth bond\nF, Functional "
                                                        "checks\nI, Insulation\nL, Leakage current\nP, Operator prompts\n");
}

// Escape and the close button drop a renamed category only when the user says so.
TEST_F(Editor, ClosingAfterRenamingACategoryAsksWhetherToSaveIt)
{
    const std::string before = appDir.readData("catdes.dat");
    for (MsgAnswer answer : {MsgAnswer::No, MsgAnswer::Yes}) {
        auto editor = open();
        click(editor.get(), "btnEditInst");
        nameCategory("Renamed");
        click(editor.get(), "btnEditCat");
        click(editor.get(), "btnUpdate");
        sink.answers = {answer};
        answer == MsgAnswer::No ? QTest::keyClick(editor.get(), Qt::Key_Escape) : void(editor->close());
        EXPECT_EQ(sink.messages.back(), (Message{"Checkitem Database", "Save the changed category names?",
                                                 MsgIcon::Question, MsgButtons::YesNo}));
        EXPECT_FALSE(editor->isVisible());
        EXPECT_EQ(appDir.readData("catdes.dat") != before, answer == MsgAnswer::Yes);
    }
}

// The second click of the double click that opened the editor must not press Help.
TEST_F(Editor, ClicksWithinTheDoubleClickIntervalOfTheOpeningPressNoButton)
{
    QStyleHints *hints = QGuiApplication::styleHints();
    const int interval = hints->mouseDoubleClickInterval();
    hints->setMouseDoubleClickInterval(60000);
    auto editor = open();
    mouseClick(editor.get(), "btnHelp");
    EXPECT_TRUE(editor->findChildren<THelpWindow *>().isEmpty());
    hints->setMouseDoubleClickInterval(0);
    mouseClick(editor.get(), "btnHelp");
    hints->setMouseDoubleClickInterval(interval);
    EXPECT_EQ(editor->findChildren<THelpWindow *>().size(), 1);
}

TEST_F(Editor, EditorsNeverAskForMoreThanTheScreen)
{
    const QFont font = QApplication::font();
    QApplication::setFont(QFont(font.family(), font.pointSize() * 3)); // as with a large scale factor
    auto editor = open();
    Tautosequence seq = sequence("EARTH", "BOND");
    TsequenceEditor sequenceEditor(nullptr, &host, &db, seq, [] {}, false, &sink);
    sequenceEditor.show();
    for (QWidget *window : std::initializer_list<QWidget *>{editor.get(), &sequenceEditor}) {
        const QSize room = window->screen()->availableGeometry().size();
        EXPECT_TRUE(room.expandedTo(window->minimumSize()) == room && room.expandedTo(window->size()) == room);
    }
    QApplication::setFont(font);
}

TEST_F(Editor, OkThatCannotWriteTheCategoriesSaysSoAndStaysOpen)
{
    const std::filesystem::path file = appDir.data("catdes.dat");
    const std::string before = TempDir::read(file);
    std::filesystem::permissions(file, std::filesystem::perms::owner_read);
    auto editor = open();
    click(editor.get(), "btnEditInst");
    nameCategory("Lost otherwise");
    click(editor.get(), "btnNewCat");
    click(editor.get(), "btnUpdate");
    click(editor.get(), "btnOk");
    EXPECT_EQ(sink.messages, (Messages{{"File Error", "The category names could not be saved to " + file.string()
                                                          + ".\nCheck that it is a file you may write to, then press OK again."}}));
    EXPECT_TRUE(editor->isVisible());
    EXPECT_EQ(TempDir::read(file), before);
    std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    click(editor.get(), "btnOk");
    EXPECT_EQ(editor->result(), QDialog::Accepted);
    EXPECT_NE(TempDir::read(file).find("B, Lost otherwise\n"), std::string::npos);
}

TEST_F(Editor, FilterAppliesOnOkAndWhatACancelLeftAtTheNextSort)
{
    auto editor = open();
    runFilter(editor.get(), "btnOk", [](QWidget *dialog) { child<QComboBox>(dialog, "lstBasicCat")->setCurrentIndex(6); });
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"5"}));
    runFilter(editor.get(), "btnOk", [](QWidget *dialog) {
        child<QTabWidget>(dialog, "filterSelect")->setCurrentIndex(1);
        for (const char *name : {"K - OK Prompt", "M - Measure"})
            child<QListWidget>(dialog, "lstAdvOp")->findItems(name, Qt::MatchExactly)[0]->setCheckState(Qt::Checked);
    });
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "3"}));
    runFilter(editor.get(), "btnCancel", [](QWidget *dialog) {
        child<QComboBox>(dialog, "lstBasicOp")->setCurrentIndex(child<QComboBox>(dialog, "lstBasicOp")->findText("P - Pass/Fail"));
    });
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "3"}));
    clickHeader(editor.get(), 3);
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"2"}));
}

TEST_F(Editor, EveryHeaderClickSortsAndMovesTheSortPicture)
{
    struct Click {
        int column, state;
        QStringList numbers;
    };
    const QImage up = QPixmap(":/instEdit/PIC_SORT_UP").toImage(), down = QPixmap(":/instEdit/PIC_SORT_DOWN").toImage();
    auto editor = open();
    for (const Click &c : std::vector<Click>{{0, 2, {"5", "3", "2", "1"}}, {0, 1, {"1", "2", "3", "5"}},
                                             {1, 3, {"2", "1", "5", "3"}}, {1, 4, {"3", "5", "1", "2"}},
                                             {2, 5, {"5", "3", "1", "2"}}, {2, 6, {"2", "1", "3", "5"}},
                                             {3, 6, {"2", "1", "3", "5"}}}) {
        clickRow(editor.get(), 2);
        clickHeader(editor.get(), c.column);
        EXPECT_EQ(editor->checkitemList().sortState().number(), c.state);
        EXPECT_EQ(column(editor.get(), 0), c.numbers) << c.state;
        EXPECT_EQ(grid(editor.get())->currentIndex().row(), 0);
        EXPECT_EQ(header(editor.get())->sortColumn(), (c.state - 1) / 2);
        EXPECT_TRUE(header(editor.get())->sortPicture().toImage() == (c.state % 2 ? up : down)) << c.state;
    }
}

TEST_F(Editor, ImportAddsToFreeSlotsResetsTheOrderAndReportsMissingFileAndOverflow)
{
    appDir.dir().write("more.csv", "b,K,Plug in\r\nZ,P,Tab\there\x01\nno commas here\n");
    auto editor = open();
    clickHeader(editor.get(), 0);
    importFile(editor.get(), "more.csv");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(bytesOf(db[3]) + bytesOf(db[5]), bytesOf(TInstr(' ', 'K', "Plug in")) + bytesOf(TInstr('Z', 'P', "Tab\there ")));
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "2", "3", "4", "5", "6"}));
    EXPECT_EQ(header(editor.get())->sortColumn(), -1);
    importFile(editor.get(), "absent.csv");
    for (std::size_t i = 0; i < TInstrDatabase::SlotCount; ++i)
        if (i != 900)
            db[i].assign(' ', 'P', "Question");
    importFile(editor.get(), "more.csv"); // room for the first line only
    EXPECT_EQ(bytesOf(db[900]), bytesOf(TInstr(' ', 'K', "Plug in")));
    EXPECT_EQ(sink.messages, (Messages{{"ERROR", "An error occurred while importing the checkitems.\nAn error code of -1 "
                                                 "was returned - File I/O Error."},
                                       {"OVERFLOW", "WARNING!\n\nNot all checkitems could be imported because there\n"
                                                    "was insufficient space in the checkitem database to\ninsert all of "
                                                    "the checkitems from the specified file.",
                                        MsgIcon::Exclamation}}));
}

TEST_F(Editor, ExportWritesEverySlotAndClosingWaitsForTheEditToEnd)
{
    auto editor = open();
    click(editor.get(), "btnExport");
    std::string expected;
    for (const TInstr &slot : db.slots())
        expected += std::string{slot.category, ',', slot.opCode, ','} + slot.commandText() + "\n";
    EXPECT_TRUE(TempDir::read("instList.csv") == expected);
    EXPECT_EQ(expected.substr(0, 34), "E,M,EB\t0\t5\n ,P,Mains plug intact?\n");
    click(editor.get(), "btnEditInst");
    EXPECT_FALSE(editor->close());
    QTest::keyClick(editor.get(), Qt::Key_Escape);
    EXPECT_TRUE(editor->isVisible());
    click(editor.get(), "btnUpdate");
    EXPECT_TRUE(editor->close());
    EXPECT_TRUE(sink.messages.empty()); // no category changed: nothing to ask
}

TEST_F(Editor, FrameOpensTheEditorFromBothButtonsAndSavesTheCheckitems)
{
    FrameHost frameHost; // a folder of its own with the frame's complete data set
    frameHost.appDir.copyDemoDefinitions(true);
    frameHost.appDir.writeCompleteDataSet({sequence("EARTH", "BOND", {1})}, {"A", "B", "C", "D", "E"});
    TAutoSeqEditFrame frame(nullptr, &frameHost.host, &frameHost.hostData2, &sink);
    for (const char *button : {"BtnInstEd", "BtnInstEd2"}) {
        whenModal([](QWidget *editor) {
            click(editor, "btnNewInst");
            retype(editor, 0, "mains");
            retype(editor, 1, "1");
            click(editor, "btnUpdate");
            click(editor, "btnOk");
        });
        click(&frame, button);
    }
    EXPECT_TRUE(sink.messages.empty());
    const std::string saved = TempDir::read(frameHost.appDir.data("mit.dat"));
    ASSERT_EQ(saved.size(), 45936u);
    EXPECT_EQ(saved.substr(44, 88), bytesOf(TInstr(' ', 'C', padded("MAINS\t1"))) + bytesOf(TInstr(' ', 'C', padded("MAINS\t1"))));
}

TEST_F(Editor, SyncReplacesTheDatabaseResetsTheOrderAndWritesTheBackup)
{
    TInstrDatabase analyzer;
    analyzer[0].assign('P', 'K', "Synced first");
    analyzer[3].assign(' ', 'D', "30");
    analyzer[700].assign('A', 'P', "Beyond the editor's slots");
    KnownImages memory = KnownDataSet::images(1);
    memory.checkitems = mitBytes(analyzer.slots());
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, memory);
    ASSERT_TRUE(sim.ready());
    auto editor = open();
    clickHeader(editor.get(), 0);
    connectByEthernet(sim.address());
    click(editor.get(), "btnSync");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_TRUE(mitBytes(db.slots()) == memory.checkitems);
    EXPECT_EQ(header(editor.get())->sortColumn(), -1);
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"1", "4"}));
    EXPECT_TRUE(TempDir::read(appDir.data("mit.dat")) == memory.checkitems);
}

TEST_F(Editor, CancelledOrFailedSyncChangesNothing)
{
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, KnownDataSet::images(1), {"silent-after=GESI"});
    ASSERT_TRUE(sim.ready());
    const std::string before = mitBytes(db.slots());
    auto editor = open();
    clickHeader(editor.get(), 1);
    whenModal([](QWidget *selector) { click(selector, "btnCancel"); });
    click(editor.get(), "btnSync");
    connectByEthernet(sim.address());
    click(editor.get(), "btnSync");
    EXPECT_EQ(sink.messages, (Messages{{"Data Timed Out.", "A communications timeout occurred.\r\rOperation Canceled.",
                                        MsgIcon::Stop, MsgButtons::Ok, MsgModality::System}}));
    EXPECT_TRUE(mitBytes(db.slots()) == before);
    EXPECT_EQ(column(editor.get(), 0), (QStringList{"2", "1", "5", "3"}));
    EXPECT_FALSE(std::filesystem::exists(appDir.data("mit.dat")));
}

TEST_F(Editor, PrintsTheGridAsItStandsAndHelpOpensInAWindowOfTheEditor)
{
    std::filesystem::copy_file(KT930_TEST_APPDIR "/TestProcedureEditor.qch", appDir.dir().path() / "TestProcedureEditor.qch");
    db[5].assign(' ', 'A', "UT203");
    auto editor = open(true);
    EXPECT_EQ(comboTexts(editor.get(), "lstOp")[0], "A - Autosequence");
    editor->pdf = QString::fromStdString((appDir.dir().path() / "listing.pdf").string());
    clickHeader(editor.get(), 0);
    click(editor.get(), "btnPrint");
    QProcess text;
    text.start("pdftotext", {"-layout", editor->pdf, "-"});
    ASSERT_TRUE(text.waitForFinished());
    const QString listing = QString::fromUtf8(text.readAllStandardOutput()).simplified();
    EXPECT_TRUE(listing.startsWith("KT930pc Instruction Listing No. Category Op Code Command 6 A - Autosequence UT203 "
                                   "5 Functional checks C - Control AUX»1"))
        << listing.toStdString();
    click(editor.get(), "btnHelp");
    click(editor.get(), "btnHelp"); // a second press brings the one window back
    ASSERT_EQ(editor->findChildren<THelpWindow *>().size(), 1);
    auto *help = editor->findChild<THelpWindow *>();
    EXPECT_TRUE(help->isWindow() && help->isVisible() && help->topicLoaded());
    EXPECT_EQ(help->windowTitle(), "TestProcedureEditor Help");
}

TEST(EditorGuard, TheParameterlessFormOnlySaysSoAndCanOnlyBeClosed)
{
    ensureApplication();
    RecordingMessageSink sink;
    TguiMessageSink::setDefaultSink(&sink);
    TinstructionEditorForm guard;
    TguiMessageSink::setDefaultSink(nullptr);
    EXPECT_EQ(sink.messages, (Messages{{"Error 0001 - TinstructionEditorForm::TinstructionEditorForm()",
                                        "Fatal Error - Please contact your software vendor immediately!",
                                        MsgIcon::Exclamation}}));
    EXPECT_EQ(enabledControls(&guard), QStringList{"btnOk"});
}
