// The checklist plug-in through its frame and editor: a checklist with a step that runs
// an autosequence is written, uploaded to the simulator and downloaded by kt930ctl into
// a clean folder byte for byte; the inspection plug-in's saves keep it.
#include "../e2e/SimulatorUnderTest.h"
#include "AutoSequenceEditorFrame.h"
#include "ProgramRun.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "TlastTransfer.h"
#include "TestProcedureEditorFrame.h"
#include "UiTestSupport.h"
#include <dlfcn.h>
#include <set>
namespace fs = std::filesystem;

namespace {
struct ChecklistPlugin : ::testing::Test, FrameHost {
    RecordingMessageSink sink;

    ChecklistPlugin()
    {
        fs::copy(fs::path(KT930_TEST_APPDIR) / "Data", appDir.dir().path() / "Data",
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    }
    ProgramRun ctl(std::vector<std::string> arguments, const fs::path &app)
    {
        arguments.insert(arguments.end(), {"--appdir", app.string()});
        return ProgramRun::run("kt930ctl", std::move(arguments), appDir.dir().path());
    }
    // In the editor: types title, adds the checkitems numbered steps, then OK.
    static void writeChecklist(const QString &title, std::vector<QString> steps, QStringList *shown)
    {
        whenModal([=](QWidget *editor) {
            auto *available = editor->findChild<QTableView *>("instList");
            for (const QString &number : steps) {
                const int row = columnTexts(available, 0).indexOf(number);
                available->setCurrentIndex(available->model()->index(row, 0));
                click(editor, "btnAdd");
            }
            *shown = columnTexts(editor->findChild<QTableView *>("asList"), 3);
            editor->findChild<QLineEdit *>("titletxt")->setText(title);
            click(editor, "btnOk");
        });
    }
};
} // namespace

TEST_F(ChecklistPlugin, AChecklistWithAnAutosequenceStepSurvivesUploadAndDownloadByteForByte)
{
    // The technician's "A" checkitem: physical inspection 3, the 38th checkitem of the demo set.
    appDir.dir().write("call.csv", " ,A,PHY03\n");
    ASSERT_EQ(ctl({"import-csv", (appDir.dir().path() / "call.csv").string()}, appDir.dir().path()).exitCode, 0);
    TTestProcEditFrame frame(nullptr, &host, &hostData2, &sink);
    auto *list = child<QListWidget>(&frame, "lstTP");
    ASSERT_EQ(list->count(), 500);
    EXPECT_EQ(list->item(4)->text(), "<unused>");
    list->setCurrentRow(4);
    QStringList steps;
    writeChecklist("Leads with asset check", {"38", "2", "3"}, &steps);
    click(&frame, "BtnTPEdit");
    EXPECT_EQ(steps, (QStringList{"Runs: Physical inspection 3 - Asset Record - Location", "Mains plug free of damage?",
                                  "Mains lead free of cuts and kinks?"}));
    EXPECT_EQ(list->item(4)->text(), "Leads with asset check");
    EXPECT_TRUE(sink.messages.empty());

    // What the frame saved is what kt930ctl shows.
    const ProgramRun shown = ctl({"show"}, appDir.dir().path());
    EXPECT_NE(shown.out.find("  5. Leads with asset check: 38 2 3\n"
                             "      1. 38 A - Autosequence | Runs: Physical inspection 3 - Asset Record - Location\n"
                             "      2. 2 P - Pass/Fail | Mains plug free of damage?\n"),
              std::string::npos)
        << shown.out;

    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, KnownDataSet::images(1));
    ASSERT_TRUE(sim.ready());
    connectByEthernet(sim.address());
    click(&frame, "BtnUpload");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(TlastTransfer::read(appDir.dir().path() / "Data").value().link, "Ethernet " + sim.address());
    const fs::path clean = appDir.dir().path() / "clean";
    fs::create_directories(clean / "Data");
    for (const auto &entry : fs::directory_iterator(appDir.dir().path() / "Data"))
        if (entry.path().extension() == ".in")
            fs::copy(entry.path(), clean / "Data");
    EXPECT_EQ(ctl({"download", "--ethernet", sim.address()}, clean).exitCode, 0);
    EXPECT_EQ(TempDir::read(clean / "Data/testProc.asq"), appDir.readData("testProc.asq"));
    EXPECT_EQ(TempDir::read(clean / "Data/mit.dat"), appDir.readData("mit.dat"));
}

// The two plug-ins on one folder: the checklist saved by one stays through the other's
// saves, and each reads the other's work when it is shown again.
TEST_F(ChecklistPlugin, EditingChecklistsThenSequencesLosesNothingOfEither)
{
    TTestProcEditFrame checklists(nullptr, &host, &hostData2, &sink);
    TAutoSeqEditFrame sequences(nullptr, &host, &hostData2, &sink);
    child<QListWidget>(&checklists, "lstTP")->setCurrentRow(7);
    QStringList steps;
    writeChecklist("New procedure", {"1"}, &steps);
    click(&checklists, "BtnTPEdit");
    const std::string saved = appDir.readData("testProc.asq");

    sequences.ReloadData(); // as the host does when it shows the view again
    sequences.dataSet().inspections[0].makeUnused();
    click(&sequences, "BtnExit");
    EXPECT_EQ(appDir.readData("testProc.asq"), saved);
    EXPECT_EQ(sequences.dataSet().checklists.items[7].titleText().substr(0, 13), "New procedure");

    checklists.ReloadData();
    EXPECT_TRUE(checklists.dataSet().inspections[0].isUnused());
    EXPECT_TRUE(sink.messages.empty());
}

// Closed without OK: an unused checklist that got a step shows it, under the title typed so far.
TEST_F(ChecklistPlugin, AnUnusedChecklistClosedWithoutOkKeepsItsStepsInSight)
{
    TTestProcEditFrame frame(nullptr, &host, &hostData2, &sink);
    auto *list = child<QListWidget>(&frame, "lstTP");
    list->setCurrentRow(9);
    whenModal([](QWidget *editor) {
        auto *available = editor->findChild<QTableView *>("instList");
        available->setCurrentIndex(available->model()->index(1, 0));
        click(editor, "btnAdd");
        editor->findChild<QLineEdit *>("titletxt")->setText("Draft");
        static_cast<QDialog *>(editor)->reject();
    });
    click(&frame, "BtnTPEdit");
    EXPECT_EQ(list->item(9)->text(), "Draft");
    EXPECT_EQ(frame.dataSet().checklists.items[9].items[0], 2);
}

// A 97th step is refused with its own words; Clear asks first.
TEST_F(ChecklistPlugin, AFullChecklistRefusesAStepAndClearAsksFirst)
{
    TTestProcEditFrame frame(nullptr, &host, &hostData2, &sink);
    TTestProc &checklist = frame.dataSet().checklists.items[0];
    for (int n = 0; n < 96; ++n)
        checklist.items[n] = 1;
    child<QListWidget>(&frame, "lstTP")->setCurrentRow(0);
    QStringList steps;
    writeChecklist("Full", {"2"}, &steps);
    click(&frame, "BtnTPEdit");
    EXPECT_EQ(steps.size(), 96);
    click(&frame, "BtnTPClear");
    ASSERT_EQ(sink.messages.size(), 2u);
    EXPECT_EQ(std::pair(sink.messages[0].caption, sink.messages[0].text),
              std::pair(std::string("Checklist Full"),
                        std::string("The selected checkitem cannot be added because\nthe checklist is full.")));
    EXPECT_EQ(
        std::pair(sink.messages[1].caption, sink.messages[1].text),
        std::pair(std::string("Confirm"),
                  std::string("Are you sure you want to clear this Checklist?\nThis operation cannot be undone.")));
    EXPECT_TRUE(frame.dataSet().checklists.items[0].isUnused());
}

// The library leaves only the host contract outside, and its frame is the checklist list.
TEST_F(ChecklistPlugin, TheLibraryExportsTheContractAndMakesItsFrame)
{
    const char *path = KT930_TEST_APPDIR "/Plugins/libTestProcedureEditor.so";
    const ProgramRun nm = ProgramRun::runTool("nm", {"-D", "--defined-only", path}, appDir.dir().path());
    std::set<std::string> exported;
    std::istringstream lines(nm.out);
    for (std::string address, kind, name; lines >> address >> kind >> name;)
        exported.insert(name);
    EXPECT_EQ(exported, (std::set<std::string>{"Finalize", "Initialize", "getConfigButton", "getConfigForm",
                                               "getMainButton", "getMainForm", "initialize", "pshutdown", "setup"}));
    void *library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_STREQ(reinterpret_cast<TinitializeProc>(dlsym(library, "initialize"))(0), "Test Procedures");
    auto setup = reinterpret_cast<TsetupProc>(dlsym(library, "setup"));
    EXPECT_EQ(std::pair(setup(&host, nullptr), setup(&host, &hostData2)), std::pair(-1, 0));
    std::unique_ptr<Tkt930Frame> frame(reinterpret_cast<TformProc>(dlsym(library, "getMainForm"))());
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(child<QListWidget>(frame.get(), "lstTP")->count(), 500);
}
