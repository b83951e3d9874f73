// The sequence editor driven through its controls: what it shows on opening, the
// setting word after every port and baud choice, the item list after every add,
// remove, clear and move, the sort clicks, the filter dialog, the checkitem
// database editor, OK and closing without OK, and its messages.
#include "ProgramRun.h"
#include "RecordingMessageSink.h"
#include "TInstrDatabase.h"
#include "TinstGridHeader.h"
#include "UiTestSupport.h"
#include "autoSequenceEditForm.h"
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QPrinter>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <array>
#include <cstring>
#include <gtest/gtest.h>

namespace {
using Items = std::array<std::uint16_t, 24>;
constexpr std::uint16_t U = 0xFFFF;

Items itemsOf(const Tautosequence &s)
{
    Items items;
    std::copy(std::begin(s.items), std::end(s.items), items.begin());
    return items;
}

// Items given, then 0 and 0xFFFF, as the editor keeps a list.
Items list(std::initializer_list<std::uint16_t> values)
{
    Items items;
    items.fill(U);
    std::copy(values.begin(), values.end(), items.begin());
    if (values.size() < items.size())
        items[values.size()] = 0;
    return items;
}

Items full() // checkitems 1, 2, 3, 5 repeated to 24 positions
{
    Items items;
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i] = std::array<std::uint16_t, 4>{1, 2, 3, 5}[i % 4];
    return items;
}

void setItems(Tautosequence &s, const Items &items)
{
    std::copy(items.begin(), items.end(), s.items);
}

// Prints to a PDF file where the user would have picked a printer.
class PdfSequenceEditor : public TsequenceEditor {
public:
    using TsequenceEditor::TsequenceEditor;
    std::filesystem::path pdf;
    int printerDialogs = 0;

protected:
    bool choosePrinter(QPrinter &printer) override
    {
        ++printerDialogs;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(QString::fromStdString(pdf.string()));
        return true;
    }
};

struct SequenceEditorFixture : ::testing::Test {
    AppDirScope appDir;
    RecordingMessageSink sink;
    TInstrDatabase db;
    Tautosequence seq = sequence("EARTH BOND", "class i", {2, 1});
    int saves = 0;
    std::unique_ptr<TsequenceEditor> editor;

    SequenceEditorFixture()
    {
        appDir.copyDemoDefinitions();
        appDir.writeData("catdes.dat", "A, Visual\nB, Electrical\nC, Timing\n");
        db[0].assign('B', 'M', "Earth bond\t0.10");
        db[1].assign('A', 'P', "Visual check");
        db[2].assign(' ', 'K', "Press OK");
        db[3].assign('A', 'A', "PHY\t3"); // an autosequence call: never offered here
        db[4].assign('C', 'D', "Wait\t5");
    }

    TsequenceEditor &open()
    {
        editor = std::make_unique<PdfSequenceEditor>(nullptr, nullptr, &db, seq, [this] { ++saves; }, false, &sink);
        editor->show();
        return *editor;
    }
    template <class T = QWidget> T *get(const char *name) { return child<T>(editor.get(), name); }
    void click(const char *name) { ::click(editor.get(), name); }
    QStringList column(const char *grid, int c) { return columnTexts(get<QTableView>(grid), c); }
    void select(const char *grid, int row) { get<QTableView>(grid)->setCurrentIndex(get<QTableView>(grid)->model()->index(row, 0)); }
    int selected(const char *grid) { return get<QTableView>(grid)->currentIndex().row(); }
    // A user's pick in a drop-down list: keys, so the list reports it as the user's.
    void choose(const char *name, int index)
    {
        auto *combo = get<QComboBox>(name);
        while (combo->currentIndex() < index)
            QTest::keyClick(combo, Qt::Key_Down);
        while (combo->currentIndex() > index)
            QTest::keyClick(combo, Qt::Key_Up);
        ASSERT_EQ(combo->currentIndex(), index);
    }
    TinstGridHeader *head() { return static_cast<TinstGridHeader *>(get<QTableView>("instList")->horizontalHeader()); }
    // Runs the filter dialog with a category picked, ended by button.
    void filterBy(const QString &category, const char *button)
    {
        whenModal([=](QWidget *dialog) {
            auto *categories = child<QComboBox>(dialog, "lstBasicCat");
            categories->setCurrentIndex(categories->findText(category));
            ::click(dialog, button);
        });
        click("btnFilter");
    }
    void pressHeader(int column)
    {
        auto *head = get<QTableView>("instList")->horizontalHeader();
        // The middle of the section: near its edges a press resizes.
        const QPoint at(head->sectionViewportPosition(column) + head->sectionSize(column) / 2, head->height() / 2);
        QTest::mousePress(head->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseRelease(head->viewport(), Qt::LeftButton, {}, at);
    }
};
} // namespace

// ---- opening

TEST_F(SequenceEditorFixture, OpeningShowsTrimmedTitlesAndBothGridsWithNamesAndWithoutCalls)
{
    open();
    EXPECT_TRUE(editor->usable());
    EXPECT_EQ(get<QLineEdit>("title1txt")->text(), "EARTH BOND");
    EXPECT_EQ(get<QLineEdit>("title2txt")->text(), "class i");
    EXPECT_EQ(column("instList", 0), QStringList({"1", "2", "3", "5"}));
    EXPECT_EQ(column("instList", 1), QStringList({"Electrical", "Visual", "", "Timing"}));
    EXPECT_EQ(column("instList", 2), QStringList({"M - Measure", "P - Pass/Fail", "K - OK Prompt", "D - Delay"}));
    EXPECT_EQ(column("instList", 3).first(), QString::fromUtf8("Earth bond»0.10"));
    EXPECT_EQ(column("asList", 0), QStringList({"2", "1"}));
    EXPECT_EQ(column("asList", 2), QStringList({"P - Pass/Fail", "M - Measure"}));
    EXPECT_EQ(head()->sortColumn(), 0);
    EXPECT_EQ(head()->sortPicture().toImage(), QPixmap(":/instEdit/PIC_SORT_UP").toImage());
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(SequenceEditorFixture, MissingDescriptorsGiveTheMessageAndBareLetters)
{
    std::filesystem::remove(appDir.data("catdes.dat"));
    open();
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].caption, "ERROR");
    EXPECT_EQ(sink.messages[0].text, CategoryDescriptors::loadErrorText());
    EXPECT_TRUE(editor->usable());
    EXPECT_EQ(column("instList", 1), QStringList({"B", "A", "", "C"}));
}

// ---- port, baud rate and the setting word

TEST_F(SequenceEditorFixture, SettingWordIsWrittenAfterEveryPortAndBaudChoice)
{
    open();
    EXPECT_EQ(get<QComboBox>("testerPortlst")->currentText(), "Port Unused");
    EXPECT_EQ(get<QComboBox>("baudRatelst")->currentIndex(), -1);
    struct Choice {
        const char *list;
        int index, setting, baudIndex;
    };
    // Picking a port shows 2400 baud; no port hides the baud rate and does not keep one picked.
    for (Choice c : {Choice{"testerPortlst", 3, 3, 0}, Choice{"baudRatelst", 1, 0x0B, 1}, Choice{"testerPortlst", 6, 14, 1},
                     Choice{"baudRatelst", 3, 30, 3}, Choice{"testerPortlst", 0, 0, -1}, Choice{"baudRatelst", 2, 0, 2}}) {
        choose(c.list, c.index);
        EXPECT_EQ(seq.setting, c.setting) << c.list << c.index;
        EXPECT_EQ(get<QComboBox>("baudRatelst")->currentIndex(), c.baudIndex) << c.list << c.index;
    }
}

TEST_F(SequenceEditorFixture, StoredWordsShowTheirEntriesAnInvalidOneIsReset)
{
    seq.setting = 0x13; // port 3, 9600 baud
    open();
    EXPECT_EQ(get<QComboBox>("testerPortlst")->currentText(), "3");
    EXPECT_EQ(get<QComboBox>("baudRatelst")->currentText(), "9600 baud");

    seq.setting = 0x3F;
    open();
    EXPECT_EQ(seq.setting, 0);
    EXPECT_EQ(get<QComboBox>("testerPortlst")->currentText(), "Port Unused");
    EXPECT_EQ(get<QComboBox>("baudRatelst")->currentIndex(), -1);

    seq.setting = 7; // a port the list does not have
    open();
    EXPECT_EQ(get<QComboBox>("testerPortlst")->currentIndex(), -1);
    EXPECT_EQ(get<QComboBox>("baudRatelst")->currentText(), "2400 baud");
    click("btnOk");
    EXPECT_EQ(seq.setting, 7);
}

// ---- add, remove, clear

TEST_F(SequenceEditorFixture, AddPutsTheSelectedCheckitemAtTheEndUntilTheSequenceIsFull)
{
    open();
    select("instList", 3); // checkitem 5
    click("btnAdd");
    EXPECT_EQ(itemsOf(seq), list({2, 1, 5}));
    EXPECT_EQ(column("asList", 0), QStringList({"2", "1", "5"}));
    for (int i = 3; i < 24; ++i)
        click("btnAdd");
    Items expected = list({2, 1});
    std::fill(expected.begin() + 2, expected.end(), 5);
    EXPECT_EQ(itemsOf(seq), expected);
    EXPECT_TRUE(sink.messages.empty());

    click("btnAdd");
    const std::vector<Message> fullBox{{"Autosequence Full",
                                        "The selected checkitem cannot be added because\nthe autosequence is full.",
                                        MsgIcon::Exclamation}};
    EXPECT_EQ(sink.messages, fullBox);
    EXPECT_EQ(itemsOf(seq), expected);
}

TEST_F(SequenceEditorFixture, RemoveShiftsUpAndEndsAFullSequenceWithZeroClearEmpties)
{
    seq = sequence("A", "B", {1, 2, 3, 5});
    open();
    select("asList", 1);
    click("btnRemove");
    EXPECT_EQ(itemsOf(seq), list({1, 3, 5}));
    EXPECT_EQ(selected("asList"), 0);
    select("asList", 0);
    click("btnRemove");
    EXPECT_EQ(itemsOf(seq), list({3, 5}));
    EXPECT_EQ(selected("asList"), 0);

    setItems(seq, full());
    open();
    select("asList", 10);
    click("btnRemove");
    Items expected = full();
    std::copy(expected.begin() + 11, expected.end(), expected.begin() + 10);
    expected[23] = 0;
    EXPECT_EQ(itemsOf(seq), expected);
    EXPECT_EQ(selected("asList"), 9);

    seq = sequence("A", "B", {5});
    open();
    click("btnRemove");
    EXPECT_EQ(itemsOf(seq), list({}));
    click("btnRemove"); // nothing left to remove
    EXPECT_EQ(itemsOf(seq), list({}));

    setItems(seq, full());
    open();
    click("btnClear");
    EXPECT_EQ(itemsOf(seq), list({}));
    EXPECT_TRUE(column("asList", 0).isEmpty());
}

// ---- moves

TEST_F(SequenceEditorFixture, MovesAtTheEdgesDoNothingElsewhereTheSelectionFollows)
{
    seq = sequence("A", "B", {1, 2, 3, 5});
    open();
    select("asList", 0);
    click("btnTop");
    click("btnUp");
    EXPECT_EQ(itemsOf(seq), list({1, 2, 3, 5}));
    select("asList", 3);
    click("btnDown");
    EXPECT_EQ(itemsOf(seq), list({1, 2, 3, 5}));

    struct Move {
        const char *button;
        Items items;
        int selection;
    };
    for (const Move &m : {Move{"btnUp", list({1, 2, 5, 3}), 2}, Move{"btnTop", list({5, 1, 2, 3}), 0},
                          Move{"btnDown", list({1, 5, 2, 3}), 1}, Move{"btnBottom", list({1, 2, 3, 5}), 3},
                          Move{"btnBottom", list({1, 2, 3, 5}), 3}}) { // the last: already at the bottom
        click(m.button);
        EXPECT_EQ(itemsOf(seq), m.items) << m.button;
        EXPECT_EQ(selected("asList"), m.selection) << m.button;
    }
}

TEST_F(SequenceEditorFixture, BottomInAFullSequenceGoesToPosition24)
{
    setItems(seq, full());
    open();
    select("asList", 0);
    click("btnBottom");
    Items expected = full();
    std::rotate(expected.begin(), expected.begin() + 1, expected.end());
    EXPECT_EQ(itemsOf(seq), expected);
    EXPECT_EQ(selected("asList"), 23);
}

TEST_F(SequenceEditorFixture, ARowWithFocusButNoSelectionIsNotActedOn)
{
    seq = sequence("A", "B", {1, 2, 3});
    open();
    auto *sequenceGrid = get<QTableWidget>("asList");
    select("asList", 0);
    QTest::keyClick(sequenceGrid, Qt::Key_Space, Qt::ControlModifier); // deselects, keeps the focus
    ASSERT_TRUE(sequenceGrid->selectedItems().isEmpty());
    for (const char *button : {"btnBottom", "btnDown", "btnRemove"})
        click(button);
    EXPECT_EQ(itemsOf(seq), list({1, 2, 3}));

    auto *checkitems = get<QTableView>("instList");
    QTest::keyClick(checkitems, Qt::Key_Space, Qt::ControlModifier);
    ASSERT_FALSE(checkitems->selectionModel()->hasSelection());
    click("btnAdd");
    EXPECT_EQ(itemsOf(seq), list({1, 2, 3}));
}

// ---- keyboard

TEST_F(SequenceEditorFixture, EnterOnTheAvailableCheckitemsAddsAsAddDoesAndLeavesTheFormOpen)
{
    open();
    auto *checkitems = get<QTableView>("instList");
    select("instList", 3); // checkitem 5
    QTest::keyClick(checkitems, Qt::Key_Return);
    QTest::keyClick(checkitems, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(itemsOf(seq), list({2, 1, 5, 5}));
    EXPECT_TRUE(editor->isVisible());
}

TEST_F(SequenceEditorFixture, TabRunsFromTheCheckitemsThroughAddTheSequenceItsButtonsTitlesAndSettingsToOk)
{
    open();
    editor->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(editor.get()));
    get("instList")->setFocus(Qt::TabFocusReason);
    QStringList order{QApplication::focusWidget()->objectName()};
    while (order.size() < 15 && order.last() != "btnOk") {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order << QApplication::focusWidget()->objectName();
    }
    EXPECT_EQ(order, (QStringList{"instList", "btnAdd", "asList", "btnTop", "btnUp", "btnDown", "btnBottom",
                                  "btnRemove", "btnClear", "title1txt", "title2txt", "testerPortlst", "baudRatelst",
                                  "btnOk"}));
}

// The current cell of the grid with the focus is framed, on a selected row too.
TEST_F(SequenceEditorFixture, TheGridWithTheFocusFramesItsCurrentCell)
{
    open();
    editor->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(editor.get()));
    auto *sequenceGrid = get<QTableWidget>("asList");
    select("asList", 1);
    const QRect cell = sequenceGrid->visualRect(sequenceGrid->currentIndex());
    const QColor frame = sequenceGrid->palette().color(QPalette::HighlightedText);
    auto topEdge = [&] { return sequenceGrid->viewport()->grab().toImage().pixelColor(cell.center().x(), cell.top()); };
    get("instList")->setFocus();
    EXPECT_NE(topEdge(), frame);
    sequenceGrid->setFocus();
    EXPECT_EQ(topEdge(), frame);
}

// ---- sorting and filtering

TEST_F(SequenceEditorFixture, HeaderPressesToggleTheSortModeAndReorderTheList)
{
    open();
    const QImage up = QPixmap(":/instEdit/PIC_SORT_UP").toImage();
    const QImage down = QPixmap(":/instEdit/PIC_SORT_DOWN").toImage();
    struct Step {
        int column, mode;
        QStringList numbers;
    };
    for (const Step &step : std::vector<Step>{{0, 2, {"5", "3", "2", "1"}}, {0, 1, {"1", "2", "3", "5"}},
                                              {0, 2, {"5", "3", "2", "1"}}, {1, 3, {"3", "1", "5", "2"}},
                                              {1, 4, {"2", "5", "1", "3"}}, {2, 5, {"5", "3", "1", "2"}},
                                              {2, 6, {"2", "1", "3", "5"}}, {3, 6, {"2", "1", "3", "5"}},
                                              {1, 3, {"3", "1", "5", "2"}}, {0, 1, {"1", "2", "3", "5"}}}) {
        select("instList", 2);
        pressHeader(step.column);
        SCOPED_TRACE(step.mode);
        EXPECT_EQ(editor->sortMode(), step.mode);
        EXPECT_EQ(column("instList", 0), step.numbers);
        EXPECT_EQ(selected("instList"), 0);
        EXPECT_EQ(head()->sortColumn(), (step.mode - 1) / 2); // column 3 keeps the picture where it was
        EXPECT_EQ(head()->sortPicture().toImage(), step.mode % 2 ? up : down);
    }
}

TEST_F(SequenceEditorFixture, FilterOkShowsTheChosenCategoryCancelLeavesTheListUntilTheNextSort)
{
    open();
    filterBy("Electrical", "btnOk");
    EXPECT_EQ(column("instList", 0), QStringList({"1"}));
    filterBy("Timing", "btnCancel");
    EXPECT_EQ(column("instList", 0), QStringList({"1"}));
    pressHeader(0); // the dialog wrote its choice into the filter all the same
    EXPECT_EQ(column("instList", 0), QStringList({"5"}));
    select("instList", 0);
    click("btnAdd");
    EXPECT_EQ(itemsOf(seq), list({2, 1, 5}));
}

// ---- the checkitem database editor

TEST_F(SequenceEditorFixture, EditCheckitemDatabaseSavesFirstThenRefreshesNamesAndBothGrids)
{
    open();
    int savesBefore = -1;
    whenModal([&](QWidget *dbEditor) {
        savesBefore = saves;
        EXPECT_EQ(dbEditor->objectName(), "instructionEditorForm");
        db[1].assign('C', 'P', "Visual check, covers");
        db[6].assign('B', 'K', "New step");
        appDir.writeData("catdes.dat", "A, Visual\nB, Electrical\nC, Timers\n");
        QTest::keyClick(dbEditor, Qt::Key_Escape);
    });
    click("btnEditInst");
    EXPECT_EQ(savesBefore, 1);
    EXPECT_EQ(column("instList", 0), QStringList({"1", "2", "3", "5", "7"}));
    EXPECT_EQ(column("instList", 1), QStringList({"Electrical", "Timers", "", "Timers", "Electrical"}));
    EXPECT_EQ(column("asList", 1), QStringList({"Timers", "Electrical"}));
    EXPECT_EQ(column("asList", 3).first(), "Visual check, covers");
}

// ---- OK and closing

TEST_F(SequenceEditorFixture, OkUppercasesAndPadsTitlesButKeepsTitle1ForUnused)
{
    seq.setting = 0x0B;
    open();
    get<QLineEdit>("title1txt")->setText("abc");
    get<QLineEdit>("title2txt")->setText("ward 3");
    click("btnOk");
    EXPECT_EQ(editor->result(), QDialog::Accepted);
    EXPECT_EQ(std::string(seq.title1, 19), std::string("ABC") + std::string(15, ' ') + '\0');
    EXPECT_EQ(std::string(seq.title2, 19), std::string("WARD 3") + std::string(12, ' ') + '\0');
    EXPECT_EQ(seq.setting, 0x0B);

    seq.makeUnused();
    open();
    EXPECT_EQ(get<QLineEdit>("title1txt")->text(), "(UNUSED)");
    get<QLineEdit>("title1txt")->setText("(unused)");
    click("btnOk");
    EXPECT_TRUE(seq.isUnused());
}

TEST_F(SequenceEditorFixture, TitlesTakeWindows1252TextsAndRefuseWhatTheFilesCannotHold)
{
    seq = sequence("PR\xDC" "F \x80\x81\x9A", "B");
    open();
    auto *title1 = get<QLineEdit>("title1txt");
    auto *title2 = get<QLineEdit>("title2txt");
    EXPECT_EQ(title1->text(), QString::fromUtf8("PRÜF €\u0081š"));
    title2->clear();
    // Typed one character at a time, as a keyboard with these keys would.
    for (char32_t c : QString::fromUtf8("\u03A9 größe \U0001F600é").toUcs4())
        QTest::sendKeyEvent(QTest::Click, title2, Qt::Key_unknown, QString::fromUcs4(&c, 1), Qt::NoModifier);
    EXPECT_EQ(title2->text(), QString::fromUtf8(" größe é"));
    title2->selectAll();
    QGuiApplication::clipboard()->setText(QString::fromUtf8("\u03A9\u03A9x€ and a long tail to be cut"));
    title2->paste();
    EXPECT_EQ(title2->text(), QString::fromUtf8("x€ and a long ta")); // cut to 18 first
    click("btnOk");
    EXPECT_EQ(std::string(seq.title1, 19), "PR\xDC" "F \x80\x81\x8A" + std::string(10, ' ') + '\0');
    EXPECT_EQ(std::string(seq.title2, 19), "X\x80 AND A LONG TA  " + std::string(1, '\0'));
}

TEST_F(SequenceEditorFixture, ClosingWithoutOkKeepsItemsAndSettingButNotTitles)
{
    open();
    get<QLineEdit>("title1txt")->setText("changed");
    choose("testerPortlst", 2);
    select("instList", 0);
    click("btnAdd");
    editor->reject();
    EXPECT_EQ(editor->result(), QDialog::Rejected);
    EXPECT_EQ(Tautosequence::titleText(seq.title1), "EARTH BOND        ");
    EXPECT_EQ(itemsOf(seq), list({2, 1, 1}));
    EXPECT_EQ(seq.setting, 2);
    EXPECT_EQ(saves, 0);
}

// ---- print

TEST_F(SequenceEditorFixture, PrintWritesTheSequencesPageWithItsNames)
{
    seq.setting = 0x0B;
    auto &printing = static_cast<PdfSequenceEditor &>(open());
    printing.pdf = appDir.dir().path() / "printed.pdf";
    get<QLineEdit>("title1txt")->setText("mains lead"); // printed as OK would store it, yet not stored
    click("btnPrint");
    EXPECT_EQ(Tautosequence::titleText(seq.title1), "EARTH BOND        ");
    EXPECT_TRUE(sink.messages.empty());
    ProgramRun text = ProgramRun::runTool("pdftotext", {"-layout", "-fixed", "6", printing.pdf.string(), "-"},
                                          appDir.dir().path());
    ASSERT_EQ(text.exitCode, 0) << text.err;
    // The page's own margins come on top of the layout's: lines are looked for, not columns.
    for (const char *line : {" AutoSequence MAINS LEAD - CLASS I\n", " Port: 3\n", " Baud Rate: 4800 Baud\n",
                             " 1.   Visual      P - Pass/Fail  Visual check\n",
                             " 2.   Electrical  M - Measure    Earth bond\u00BB0.10\n"})
        EXPECT_NE(text.out.find(line), std::string::npos) << line << text.out;
}

TEST_F(SequenceEditorFixture, AnUnusedSequenceIsNotPrintedAFailedPrintIsReported)
{
    seq.makeUnused();
    auto &printing = static_cast<PdfSequenceEditor &>(open());
    click("btnPrint");
    const Message empty{"Empty Autosequence", "Autosequence is unused.\nPrint operation not initiated.",
                        MsgIcon::Information};
    EXPECT_EQ(sink.messages, std::vector<Message>{empty});
    EXPECT_EQ(printing.printerDialogs, 0);

    seq = sequence("A", "B", {1});
    auto &failing = static_cast<PdfSequenceEditor &>(open());
    failing.pdf = appDir.dir().path() / "absent" / "printed.pdf";
    click("btnPrint");
    const Message error{"Printing Error", "An error occurred while printing.\nPrint operation aborted."};
    EXPECT_EQ(sink.messages, (std::vector<Message>{empty, error}));
}

// Only the checkitem editor repairs a record: here an unknown op code shows as an
// empty name, and opening, sorting and printing leave the record's bytes alone.
TEST_F(SequenceEditorFixture, AnUnknownOpCodeIsShownEmptyAndItsRecordIsLeftAsItIs)
{
    db[5].assign('B', 'Z', "Odd\t1"); // no definition file names Z
    const TInstr before = db[5];
    setItems(seq, list({6, 1}));
    auto &printing = static_cast<PdfSequenceEditor &>(open());
    printing.pdf = appDir.dir().path() / "printed.pdf";
    for (int column : {0, 1, 2, 2})
        pressHeader(column);
    click("btnPrint");
    EXPECT_EQ(column("asList", 2), QStringList({"", "M - Measure"}));
    EXPECT_TRUE(column("instList", 0).contains("6"));
    EXPECT_TRUE(std::filesystem::exists(printing.pdf));
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(std::memcmp(&db[5], &before, sizeof(TInstr)), 0);
}
