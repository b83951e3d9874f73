// The frame's upload and download against the simulator over loopback TCP, through the real forms.
#include "../e2e/KnownDataSet.h"
#include "../e2e/SimulatorUnderTest.h"
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "TransferMessages.h"
#include "UiTestSupport.h"
#include "progress.h"

namespace {
// Records like its base, but a worker's message is recorded on the GUI thread
// through a blocking queued call, the way the GUI sink shows its boxes: a GUI
// thread that stops serving events leaves the worker hanging here.
struct GuiThreadMessageSink : RecordingMessageSink {
    MsgAnswer show(const Message &message) override
    {
        if (QThread::currentThread() == qApp->thread())
            return RecordingMessageSink::show(message);
        MsgAnswer answer = MsgAnswer::Ok;
        QMetaObject::invokeMethod(
            qApp, [&] { answer = RecordingMessageSink::show(message); }, Qt::BlockingQueuedConnection);
        return answer;
    }
};

const char *const InternalError =
    "An internal error occurred that prevented the download operation.\nPlease try to download again.\n\n"
    "If this error persists, please contact the system vendor.";
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
    std::string read(const std::string &name) const { return appDir.readData(name); }
    std::string dataFiles() const { return read("mit.dat") + read("inspection.asq") + read("usertester1.asq"); }
    // Answers the settings form with USB and a button, no analyzer involved.
    static void answerSelector(const char *button)
    {
        whenModal([=](QWidget *selector) { click(selector, "radUSB"), click(selector, button); });
    }
};
} // namespace

// Without a host record the worker cannot start: the internal error follows.
TEST_F(FrameTransfer, CancelledSettingsSaveOnlyBeforeAnUploadAndWithoutHostRecordTheInternalErrorFollows)
{
    auto frame = makeFrame();
    std::filesystem::remove(appDir.data("mit.dat"));
    answerSelector("btnCancel");
    click(frame.get(), "BtnDownload");
    EXPECT_FALSE(std::filesystem::exists(appDir.data("mit.dat")));
    answerSelector("btnCancel");
    click(frame.get(), "BtnUpload");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(read("mit.dat"), mitBytes(frame->dataSet().checkitems.slots()));

    TAutoSeqEditFrame hostless(nullptr, nullptr, nullptr, &sink);
    answerSelector("btnConnect");
    click(&hostless, "BtnUpload");
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"kt930pc", "Invalid Arguments For TuploadThread"},
                                                   {"Error", InternalError}}));
    sink.messages.clear();
    std::filesystem::remove(appDir.data("mit.dat"));
    answerSelector("btnConnect");
    click(&hostless, "BtnDownload");
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"Error", InternalError}}));
    EXPECT_TRUE(std::filesystem::exists(appDir.data("mit.dat")));
}

TEST_F(FrameTransfer, DownloadFillsTheListsAndSavesAllButTheChecklistsAndUploadLeavesTheFramesDataInTheAnalyzer)
{
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, KnownDataSet::images(1));
    ASSERT_TRUE(sim.ready());
    const std::string checklistsBefore = read("testProc.asq");
    auto frame = makeFrame();
    connectTo(sim);
    click(frame.get(), "BtnDownload");

    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(listTexts(frame.get()).value(17), "Insp 17 s1 - Sub 52");
    auto *tree = frame->findChild<QTreeWidget *>("LstUTS");
    EXPECT_EQ(tree->topLevelItem(4)->text(0) + "|" + tree->topLevelItem(0)->child(0)->text(0),
              "v. Bench tester 5/1|1. T0 seq 0 s1 - Sub 55");
    EXPECT_TRUE(read("mit.dat") == KnownDataSet::images(1).checkitems);
    EXPECT_EQ(read("testProc.asq"), checklistsBefore);

    KnownDataSet::fill(frame->dataSet(), 2);
    connectTo(sim);
    click(frame.get(), "BtnUpload");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_TRUE(sim.stopAndReadMemory().memoryFile() == KnownDataSet::images(2).memoryFile());
}

TEST_F(FrameTransfer, CancelWhileTheWorkerWaitsEndsWithItsMessageAndChangesNothing)
{
    // The analyzer answers the handshake and then falls silent: the download sits
    // in its first data request until the cancel is seen.
    SimulatorUnderTest sim(SimulatorUnderTest::Link::Tcp, KnownDataSet::images(1), {"silent-after=GESI"});
    ASSERT_TRUE(sim.ready());
    auto frame = makeFrame();
    const std::string before = KnownDataSet::snapshot(frame->dataSet());
    const std::string filesBefore = dataFiles();
    const QStringList listBefore = listTexts(frame.get());

    connectTo(sim, [](TfrmProgress *progress) {
        auto *stage = progress->findChild<QLabel *>("lblOperation");
        whenTrue([stage] { return stage->text() == "Getting Checkitems"; },
                 [progress] { click(progress, "btnCancel"); });
    });
    click(frame.get(), "BtnDownload"); // returns only if the worker's box got through

    EXPECT_EQ(sink.messages, std::vector<Message>{OperationCancelled});
    EXPECT_TRUE(KnownDataSet::snapshot(frame->dataSet()) == before && dataFiles() == filesBefore);
    EXPECT_EQ(listTexts(frame.get()), listBefore);
}
