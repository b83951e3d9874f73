// The frame's ways into the sequence editor: which autosequence is edited, shown and saved.
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "UiTestSupport.h"

namespace {
const std::vector<std::string> Files{"mit.dat",         "inspection.asq",  "usertester1.asq", "usertester2.asq",
                                     "usertester3.asq", "usertester4.asq", "usertester5.asq"};

struct FrameEditFixture : ::testing::Test, FrameHost {
    RecordingMessageSink sink;
    std::unique_ptr<TAutoSeqEditFrame> frame;

    FrameEditFixture()
    {
        appDir.copyDemoDefinitions();
        appDir.writeData("catdes.dat", "A, Visual\n");
        appDir.writeCompleteDataSet(
            {sequence("EARTH BOND", "CLASS I", {1}), unusedSequence(), sequence("INSULATION", "", {1, 1})},
            {"WARD A", "WARD B", "WARD C", "WARD D", "WARD E"});
        frame = std::make_unique<TAutoSeqEditFrame>(nullptr, &host, &hostData2, &sink);
        frame->resize(792, 546);
        frame->show();
        removeFiles(); // until a save writes them again
    }
    void removeFiles() const
    {
        for (const std::string &file : Files)
            std::filesystem::remove(appDir.data(file));
    }
    template <class T = QWidget> T *get(const char *name) { return child<T>(frame.get(), name); }
    std::vector<std::string> writtenFiles() const
    {
        std::vector<std::string> written;
        for (const std::string &file : Files)
            if (std::filesystem::exists(appDir.data(file)))
                written.push_back(file);
        return written;
    }
    // Each file as the data set in memory must be written.
    void expectFilesHoldTheDataSet()
    {
        TdataSet &data = frame->dataSet();
        EXPECT_EQ(TempDir::read(appDir.data("mit.dat")), mitBytes(data.checkitems.slots()));
        EXPECT_EQ(TempDir::read(appDir.data("inspection.asq")), asqBytes("Physical Inspections", "", data.inspections));
        for (std::size_t i = 0; i < 5; ++i)
            EXPECT_EQ(TempDir::read(appDir.data(Files[i + 2])),
                      asqBytes("User Tester Autosequences", data.userTesters[i].name, data.userTesters[i].sequences));
    }
    // In the editor: shows title 1, adds checkitem 1 and names title 2, then OK.
    void addAndConfirm(QString *shownTitle)
    {
        whenModal([shownTitle](QWidget *editor) {
            *shownTitle = editor->findChild<QLineEdit *>("title1txt")->text();
            editor->findChild<QTableView *>("instList")
                ->setCurrentIndex(editor->findChild<QTableView *>("instList")->model()->index(0, 0));
            click(editor, "btnAdd");
            editor->findChild<QLineEdit *>("title2txt")->setText("edited");
            click(editor, "btnOk");
        });
    }
    // Selects the row, then double-clicks it, as a user opens a row.
    static void doubleClick(QAbstractItemView *view, QPoint at)
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at),
            QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
        QApplication::processEvents();
    }
    void doubleClickInspection(int row)
    {
        auto *list = get<QListWidget>("lstIP");
        doubleClick(list, list->visualItemRect(list->item(row)).center());
    }
};
} // namespace

// A double click, Return or the keypad's Enter edits without saving; either Edit button saves, even with nothing
// selected, and so does closing the window.
TEST_F(FrameEditFixture, EachWayIntoTheEditorEditsThatAutosequenceAndOnlyTheButtonsSave)
{
    click(frame.get(), "BtnIPEdit"); // nothing selected: no editor (it would hang here)
    EXPECT_EQ(writtenFiles(), Files);
    removeFiles();
    auto *list = get<QListWidget>("lstIP");
    auto *tree = get<QTreeWidget>("LstUTS");
    get<QTabWidget>("PageControl1")->setCurrentIndex(1);
    tree->expandItem(tree->topLevelItem(3));
    QApplication::processEvents();
    QTreeWidgetItem *node = tree->topLevelItem(3)->child(0), *unusedNode = tree->topLevelItem(4)->child(5);
    TdataSet &data = frame->dataSet();
    const struct {
        std::function<void()> open;
        QString shown;
        const std::uint16_t *items;
        int added;
        bool saves;
    } ways[] = {
        {[&] {
             doubleClick(tree, {tree->visualItemRect(node).left() + 4, tree->visualItemRect(node).center().y()});
         },
         "LEAKAGE", data.userTesters[3].sequences[0].items, 1, false},
        {[&] {
             tree->setCurrentItem(unusedNode);
             QTest::keyClick(tree, Qt::Key_Enter, Qt::KeypadModifier);
         },
         "(UNUSED)", data.userTesters[4].sequences[5].items, 0, false},
        {[&] { click(frame.get(), "BtnUTSEdit"); }, "(UNUSED)", data.userTesters[4].sequences[5].items, 1, true},
        {[&] {
             get<QTabWidget>("PageControl1")->setCurrentIndex(0);
             list->setCurrentRow(1);
             QTest::keyClick(list, Qt::Key_Return);
         },
         "(UNUSED)", data.inspections[1].items, 0, false},
        {[&] { doubleClickInspection(2); }, "INSULATION", data.inspections[2].items, 2, false},
        {[&] {
             list->setCurrentRow(2);
             click(frame.get(), "BtnIPEdit");
         },
         "INSULATION", data.inspections[2].items, 3, true}};
    for (const auto &way : ways) {
        QString shown;
        addAndConfirm(&shown);
        way.open();
        EXPECT_EQ(shown, way.shown);
        EXPECT_EQ(way.items[way.added], 1) << shown.toStdString();
        EXPECT_EQ(writtenFiles(), way.saves ? Files : std::vector<std::string>{}) << shown.toStdString();
        removeFiles();
    }
    EXPECT_EQ(data.userTesters[2].sequences[0].items[1], 0);
    EXPECT_EQ(node->text(0) + "|" + unusedNode->text(0), "1. LEAKAGE - EDITED|6. (UNUSED) - EDITED");
    EXPECT_EQ(listTexts(frame.get()),
              (QStringList{"EARTH BOND - CLASS I", "(UNUSED) - EDITED", "INSULATION - EDITED"}));
    EXPECT_TRUE(list->currentRow() == 2 && sink.messages.empty());
    frame->close();
    EXPECT_EQ(writtenFiles(), Files);
    expectFilesHoldTheDataSet();
}

TEST_F(FrameEditFixture, TheEditorsSaveOperationWritesTheAutosequencesButNotTheCheckitems)
{
    std::vector<std::string> writtenWhileOpen;
    whenModal([&](QWidget *editor) {
        whenModal([&](QWidget *dbEditor) {
            writtenWhileOpen = writtenFiles();
            QTest::keyClick(dbEditor, Qt::Key_Escape);
        });
        click(editor, "btnEditInst");
        QTest::keyClick(editor, Qt::Key_Escape);
    });
    doubleClickInspection(0);
    const std::vector<std::string> autosequenceFiles(Files.begin() + 1, Files.end());
    EXPECT_EQ(writtenWhileOpen, autosequenceFiles);
    EXPECT_EQ(writtenFiles(), autosequenceFiles);
}

TEST_F(FrameEditFixture, MissingDefinitionFilesStopTheEditorWithItsMessage)
{
    for (const auto &entry : std::filesystem::directory_iterator(appDir.data("")))
        if (entry.path().extension() == ".in")
            std::filesystem::remove(entry.path());
    get<QListWidget>("lstIP")->setCurrentRow(0);
    click(frame.get(), "BtnIPEdit");
    const std::vector<Message> expected{
        {"ERROR!", "Warning!\nInstruction List Files Cannot Be Found Or Are Corrupt!\nPlease restart program.\n"
                   "If this problem persists, contact your software vendor."}};
    EXPECT_EQ(sink.messages, expected);
    EXPECT_EQ(writtenFiles(), Files);
}
