// The frame's upload and download against the real simulator over loopback TCP,
// driven through the real settings form and progress dialog: the data that
// arrives, the files the frame writes, the op-code check, and a cancel while the
// worker still has a message box to show.
#include "../e2e/KnownDataSet.h"
#include "../e2e/SimulatorUnderTest.h"
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "TransferMessages.h"
#include "UiTestSupport.h"
#include "progress.h"
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace {
// Records like its base, but a worker's message is recorded on the GUI thread
// through a blocking queued call, the way the GUI sink shows its boxes: a GUI
// thread that stops serving events leaves the worker hanging here.
class GuiThreadMessageSink : public RecordingMessageSink {
public:
    MsgAnswer show(const Message &message) override
    {
        if (QThread::currentThread() == qApp->thread())
            return RecordingMessageSink::show(message);
        MsgAnswer answer = MsgAnswer::Ok;
        QMetaObject::invokeMethod(qApp, [&] { answer = RecordingMessageSink::show(message); },
                                  Qt::BlockingQueuedConnection);
        return answer;
    }
};

const char *const InternalError =
    "An internal error occurred that prevented the download operation.\nPlease try to download again.\n\n"
    "If this error persists, please contact the system vendor.";
// The analyzer's memory of a known data set, and the containers a download makes of it.
KnownImages knownSet(int seed, TdataSet &containers)
{
    KnownDataSet::fill(containers, seed);
    return KnownDataSet::images(seed);
}

struct FrameTransfer : ::testing::Test, FrameHost {
    GuiThreadMessageSink sink;

    FrameTransfer()
    {
        appDir.writeCompleteDataSet({sequence("EARTH", "BOND", {1})}, {"A", "B", "C", "D", "E"});
        appDir.copyDemoDefinitions();
    }
    std::unique_ptr<TAutoSeqEditFrame> makeFrame()
    {
        auto frame = std::make_unique<TAutoSeqEditFrame>(nullptr, &host, &hostData2, &sink);
        EXPECT_TRUE(sink.messages.empty());
        return frame;
    }
    // Answers the settings form with Ethernet to the simulator's address; then
    // runs onProgress (if any) on the progress dialog.
    static void connectTo(const SimulatorUnderTest &sim, std::function<void(TfrmProgress *)> onProgress = {})
    {
        connectByEthernet(sim.address(), [onProgress] {
            if (onProgress)
                whenTrue([] { return qobject_cast<TfrmProgress *>(QApplication::activeModalWidget()) != nullptr; },
                         [onProgress] { onProgress(qobject_cast<TfrmProgress *>(QApplication::activeModalWidget())); });
        });
    }
    static std::string snapshotOf(TdataSet &data) { return KnownDataSet::snapshot(data); }
    std::string read(const std::string &name) const { return appDir.readData(name); }
    std::vector<std::string> dataFiles() const
    {
        std::vector<std::string> files;
        for (const char *name : {"mit.dat", "inspection.asq", "usertester1.asq", "usertester2.asq", "usertester3.asq",
                                 "usertester4.asq", "usertester5.asq", "testProc.asq"})
            files.push_back(read(name));
        return files;
    }
    // Answers the settings form with a method and a button, no analyzer involved.
    static void answerSelector(const char *radio, const char *button)
    {
        whenModal([=](QWidget *selector) {
            click(selector, radio);
            click(selector, button);
        });
    }
};
} // namespace

TEST_F(FrameTransfer, CancelledSettingsSaveBeforeAnUploadButNothingBeforeADownload)
{
    auto frame = makeFrame();
    std::filesystem::remove(appDir.data("mit.dat"));
    answerSelector("radUSB", "btnCancel");
    click(frame.get(), "BtnDownload");
    EXPECT_FALSE(std::filesystem::exists(appDir.data("mit.dat")));
    answerSelector("radUSB", "btnCancel");
    click(frame.get(), "BtnUpload");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(read("mit.dat"), mitBytes(frame->dataSet().checkitems.slots()));
    EXPECT_EQ(read("mit.dat").substr(0, 14), "APVisual check");
}

TEST_F(FrameTransfer, WithoutHostRecordTheInternalErrorFollowsAndDownloadStillSaves)
{
    TAutoSeqEditFrame frame(nullptr, nullptr, nullptr, &sink);
    sink.messages.clear();
    answerSelector("radUSB", "btnConnect");
    click(&frame, "BtnUpload");
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"kt930pc", "Invalid Arguments For TuploadThread"},
                                                   {"Error", InternalError}}));
    sink.messages.clear();
    std::filesystem::remove(appDir.data("mit.dat"));
    answerSelector("radUSB", "btnConnect");
    click(&frame, "BtnDownload");
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"Error", InternalError}}));
    EXPECT_TRUE(std::filesystem::exists(appDir.data("mit.dat")));
}

TEST_F(FrameTransfer, DownloadFillsTheListsAndSavesAllButTheChecklists)
{
    TdataSet expected({}, sink);
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, knownSet(1, expected));
    ASSERT_TRUE(sim.ready());
    const std::string checklistsBefore = read("testProc.asq");
    auto frame = makeFrame();
    connectTo(sim);
    click(frame.get(), "BtnDownload");

    EXPECT_TRUE(sink.messages.empty());
    EXPECT_TRUE(snapshotOf(frame->dataSet()) == KnownDataSet::snapshot(expected)) << "containers differ";
    auto *list = frame->findChild<QListWidget *>("lstIP");
    ASSERT_EQ(list->count(), 18);
    EXPECT_EQ(list->item(0)->text(), "Insp 0 s1 - Sub 1");
    auto *tree = frame->findChild<QTreeWidget *>("LstUTS");
    EXPECT_EQ(tree->topLevelItem(4)->text(0), "v. Bench tester 5/1");
    EXPECT_EQ(tree->topLevelItem(0)->child(0)->text(0), "1. T0 seq 0 s1 - Sub 55");
    EXPECT_TRUE(read("mit.dat") == mitBytes(expected.checkitems.slots()));
    EXPECT_TRUE(read("usertester5.asq")
                == asqBytes("User Tester Autosequences", expected.userTesters[4].name, expected.userTesters[4].sequences));
    EXPECT_EQ(read("testProc.asq"), checklistsBefore);
}

TEST_F(FrameTransfer, UploadSavesFirstAndLeavesTheFramesDataInTheAnalyzerMemory)
{
    TdataSet analyzer({}, sink), pc({}, sink);
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, knownSet(1, analyzer));
    ASSERT_TRUE(sim.ready());
    const KnownImages sent = knownSet(2, pc);
    auto frame = makeFrame();
    TdataSet &data = frame->dataSet();
    data.checkitems = pc.checkitems;
    data.checklists = pc.checklists;
    data.userTesters = pc.userTesters;
    data.inspections = pc.inspections;
    connectTo(sim);
    click(frame.get(), "BtnUpload");

    EXPECT_TRUE(sink.messages.empty());
    EXPECT_TRUE(sim.stopAndReadMemory().memoryFile() == sent.memoryFile()) << "analyzer memory differs";
    EXPECT_TRUE(read("mit.dat") == mitBytes(pc.checkitems.slots()));
}

TEST_F(FrameTransfer, CancelWhileTheWorkerWaitsEndsWithItsMessageAndChangesNothing)
{
    TdataSet unused({}, sink);
    // The analyzer answers the handshake and then falls silent: the download sits
    // in its first data request until the cancel is seen.
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, knownSet(1, unused), {"silent-after=GESI"});
    ASSERT_TRUE(sim.ready());
    auto frame = makeFrame();
    const std::string before = snapshotOf(frame->dataSet());
    const std::vector<std::string> filesBefore = dataFiles();
    const QStringList listBefore = listTexts(frame.get());

    bool pressed = false;
    connectTo(sim, [&pressed](TfrmProgress *progress) {
        auto *stage = progress->findChild<QLabel *>("lblOperation");
        whenTrue([stage] { return stage->text() == "Getting Checkitems"; },
                 [progress, &pressed] {
                     pressed = true;
                     click(progress, "btnCancel");
                 });
    });
    click(frame.get(), "BtnDownload"); // returns only if the worker's box got through

    EXPECT_TRUE(pressed);
    EXPECT_EQ(sink.messages, std::vector<Message>{OperationCancelled});
    EXPECT_TRUE(snapshotOf(frame->dataSet()) == before) << "containers changed";
    EXPECT_TRUE(dataFiles() == filesBefore) << "files changed";
    EXPECT_EQ(listTexts(frame.get()), listBefore);
}
