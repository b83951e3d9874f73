// The sequence editor's wiring: each control reaches its rule (the item list's are tested in the core).
#include "ProgramRun.h"
#include "RecordingMessageSink.h"
#include "TInstrDatabase.h"
#include "UiTestSupport.h"
#include "autoSequenceEditForm.h"
#include <cstring>

namespace {
using PdfSequenceEditor = PrintsToPdf<TsequenceEditor>;

struct SequenceEditorFixture : ::testing::Test {
    AppDirScope appDir;
    RecordingMessageSink sink;
    TInstrDatabase db;
    Tautosequence seq = sequence("EARTH BOND", "class i", {2, 1});
    int saves = 0;
    std::unique_ptr<PdfSequenceEditor> editor;

    SequenceEditorFixture()
    {
        appDir.copyDemoDefinitions();
        appDir.writeData("catdes.dat", "A, Visual\nB, Electrical\nC, Timing\n");
        db[0].assign('B', 'M', "Earth bond\t0.10");
        db[1].assign('A', 'P', "Visual check");
        db[3].assign('A', 'A', "PHY01"); // an autosequence call: never offered here
        db[4].assign('C', 'D', "Wait");
    }
    PdfSequenceEditor &open()
    {
        editor = std::make_unique<PdfSequenceEditor>(nullptr, nullptr, &db, seq, [this] { ++saves; }, false, &sink);
        editor->pdf = appDir.dir().path() / "printed.pdf";
        return editor->show(), *editor;
    }
    template <class T = QWidget> T *get(const char *name) { return child<T>(editor.get(), name); }
    void click(const char *name) { ::click(editor.get(), name); }
    QStringList column(const char *grid, int c) { return columnTexts(get<QTableView>(grid), c); }
    void select(const char *grid, int row)
    {
        get<QTableView>(grid)->setCurrentIndex(get<QTableView>(grid)->model()->index(row, 0));
    }
};
} // namespace

// Only the checkitem editor repairs a record: an unknown op code shows as an empty name.
TEST_F(SequenceEditorFixture, OpeningShowsBothGridsWithoutCallsAndRepairsNothingButABadSetting)
{
    db[5].assign('B', 'Z', "Odd");
    const TInstr before = db[5];
    seq = sequence("EARTH BOND", "class i", {6, 2});
    seq.setting = 0x3F;
    open();
    EXPECT_EQ(column("instList", 0) + column("asList", 2), QStringList({"1", "2", "5", "6", "", "P - Pass/Fail"}));
    EXPECT_EQ(bytesOf(db[5]), bytesOf(before));
    EXPECT_TRUE(seq.setting == 0 && sink.messages.empty());
}

TEST_F(SequenceEditorFixture, EachItemButtonEditsTheSequenceAndMovesTheSelection)
{
    seq = sequence("A", "B", {1, 2, 4, 5}); // 4 is a call: shown, not offered
    open();
    struct Step { const char *grid; int row; const char *button; QStringList shown; int selected; };
    for (const Step &s : std::vector<Step>{{"asList", 2, "btnUp", {"1", "4", "2", "5"}, 1},
                                           {"asList", 1, "btnTop", {"4", "1", "2", "5"}, 0},
                                           {"asList", 0, "btnDown", {"1", "4", "2", "5"}, 1},
                                           {"asList", 1, "btnBottom", {"1", "2", "5", "4"}, 3},
                                           {"asList", 3, "btnRemove", {"1", "2", "5"}, 2},
                                           {"instList", 0, "btnAdd", {"1", "2", "5", "1"}, 2},
                                           {"asList", 2, "btnClear", {}, -1}}) {
        select(s.grid, s.row), click(s.button);
        EXPECT_EQ(column("asList", 0) << QString::number(get<QTableWidget>("asList")->currentRow()),
                  s.shown + QStringList{QString::number(s.selected)})
            << s.button;
    }
}

TEST_F(SequenceEditorFixture, AddTakesTheSelectedCheckitemByButtonOrEnterAndWarnsWhenFull)
{
    seq = sequence("A", "B", std::vector<std::uint16_t>(23, 2));
    open();
    QTest::keyClick(get("instList"), Qt::Key_Space, Qt::ControlModifier); // deselects, keeps the focus
    click("btnAdd");
    EXPECT_EQ(seq.itemCount(), 23);
    select("instList", 2); // checkitem 5
    QTest::keyClick(get("instList"), Qt::Key_Return);
    EXPECT_EQ(column("asList", 0).last(), "5");
    click("btnAdd");
    EXPECT_EQ(sink.messages,
              (std::vector<Message>{{"Autosequence Full",
                                     "The selected checkitem cannot be added because\nthe autosequence is full.",
                                     MsgIcon::Exclamation}}));
}

// The current cell of the grid with the focus is framed, on a selected row too.
TEST_F(SequenceEditorFixture, TheGridWithTheFocusFramesItsCurrentCell)
{
    open();
    editor->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(editor.get()));
    auto *grid = get<QTableWidget>("asList");
    const QRect cell = grid->visualRect(grid->currentIndex());
    auto topEdge = [&] { return grid->viewport()->grab().toImage().pixelColor(cell.center().x(), cell.top()); };
    get("instList")->setFocus();
    EXPECT_NE(topEdge(), grid->palette().color(QPalette::HighlightedText));
    grid->setFocus();
    EXPECT_EQ(topEdge(), grid->palette().color(QPalette::HighlightedText));
}

TEST_F(SequenceEditorFixture, PortAndBaudChoicesWriteTheSettingWordAtOnceAndTheListSortsAndFilters)
{
    open();
    QTest::keyClick(get("testerPortlst"), Qt::Key_Down); // port 1 at 2400 baud
    QTest::keyClick(get("baudRatelst"), Qt::Key_Down);
    EXPECT_EQ(seq.setting, 0x09);
    QTest::keyClick(get("testerPortlst"), Qt::Key_Up); // no port: no baud rate
    EXPECT_TRUE(seq.setting == 0 && get<QComboBox>("baudRatelst")->currentIndex() == -1);
    // A header press sorts and the filter filters.
    QHeaderView *head = get<QTableView>("instList")->horizontalHeader();
    QTest::mouseClick(head->viewport(), Qt::LeftButton, {}, QPoint(head->sectionSize(0) / 2, head->height() / 2));
    EXPECT_EQ(column("instList", 0), QStringList({"5", "2", "1"}));
    whenModal([](QWidget *filter) {
        child<QComboBox>(filter, "lstBasicCat")->setCurrentText("Electrical"), ::click(filter, "btnOk");
    });
    click("btnFilter");
    EXPECT_EQ(column("instList", 0), QStringList({"1"}));
}

TEST_F(SequenceEditorFixture, EditCheckitemDatabaseSavesFirstThenReloadsAndRefreshesBothGrids)
{
    open();
    whenModal([this](QWidget *dbEditor) {
        EXPECT_EQ(saves, 1);
        db[1].assign('C', 'P', "Visual check, covers");
        std::filesystem::remove(appDir.data("catdes.dat"));
        QTest::keyClick(dbEditor, Qt::Key_Escape);
    });
    click("btnEditInst");
    EXPECT_EQ(sink.messages.back(), (Message{"ERROR", CategoryDescriptors::loadErrorText()}));
    EXPECT_EQ(column("instList", 1)[1] + column("asList", 1).join(""), "CCB"); // no names without descriptors
}

// Print prints the titles as OK stores them; an unused autosequence is neither stored nor printed.
TEST_F(SequenceEditorFixture, OkStoresAndPrintPrintsTheTitlesUpperCasedButKeepsAnUnusedOne)
{
    open();
    get<QLineEdit>("title1txt")->setText("mains lead");
    click("btnPrint");
    const std::string page = ProgramRun::runTool("pdftotext", {editor->pdf.string(), "-"}, appDir.dir().path()).out;
    EXPECT_NE(page.find("AutoSequence MAINS LEAD - CLASS I"), std::string::npos) << page;
    get<QLineEdit>("title1txt")->clear();
    get<QLineEdit>("title1txt")->insert(QString::fromUtf8("ab\u03A9c")); // no byte to store the omega as
    click("btnOk");
    EXPECT_EQ(std::string(seq.title1, 19), "ABC" + std::string(15, ' ') + '\0');
    seq.makeUnused();
    open();
    click("btnPrint");
    get<QLineEdit>("title1txt")->setText("(unused)");
    click("btnOk");
    EXPECT_TRUE(seq.isUnused());
    seq = sequence("A", "B", {1});
    open().pdf = appDir.dir().path() / "absent" / "printed.pdf";
    click("btnPrint");
    EXPECT_EQ(sink.messages, (std::vector<Message>{
                                 {"Empty Autosequence", "Autosequence is unused.\nPrint operation not initiated.",
                                  MsgIcon::Information},
                                 {"Printing Error", "An error occurred while printing.\nPrint operation aborted."}}));
}
