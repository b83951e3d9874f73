// The frame's side of upload and download: what is saved when, the cancel
// paths, and the internal-error boxes.
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "UiTestSupport.h"
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTcpServer>
#include <gtest/gtest.h>

namespace {
const char *const InternalError =
    "An internal error occurred that prevented the download operation.\nPlease try to download again.\n\n"
    "If this error persists, please contact the system vendor.";

struct TransferFixture : ::testing::Test {
    AppDirScope appDir;
    RecordingMessageSink sink;
    QWidget mainView, container;
    TPluginHostInfo host;
    int hostData2 = 0;
    TransferFixture()
    {
        host.mainView = &mainView;
        host.container = &container;
    }
    void click(QWidget *frame, const char *name) { frame->findChild<QPushButton *>(name)->click(); }
};

void answerSelector(const char *radio, const char *button)
{
    whenModal([=](QWidget *selector) {
        EXPECT_EQ(selector->windowTitle(), "Communication Settings");
        selector->findChild<QRadioButton *>(radio)->click();
        selector->findChild<QPushButton *>(button)->click();
    });
}
} // namespace

TEST_F(TransferFixture, CancelledUploadSettingsStillLeaveTheDataSetSaved)
{
    TAutoSeqEditFrame frame(nullptr, &host, &hostData2, &sink);
    sink.messages.clear();
    answerSelector("radUSB", "btnCancel");
    click(&frame, "BtnUpload");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(TempDir::read(appDir.data("mit.dat")), mitBytes(std::vector<TInstr>(1044)));
    EXPECT_TRUE(std::filesystem::exists(appDir.data("usertester5.asq")));
}

TEST_F(TransferFixture, CancelledDownloadSettingsSaveNothing)
{
    TAutoSeqEditFrame frame(nullptr, &host, &hostData2, &sink);
    sink.messages.clear();
    answerSelector("radUSB", "btnCancel");
    click(&frame, "BtnDownload");
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_FALSE(std::filesystem::exists(appDir.data("mit.dat")));
}

TEST_F(TransferFixture, WithoutHostRecordUploadReportsTheExceptionThenTheInternalError)
{
    TAutoSeqEditFrame frame(nullptr, nullptr, nullptr, &sink);
    sink.messages.clear();
    answerSelector("radUSB", "btnConnect");
    click(&frame, "BtnUpload");
    const std::vector<Message> expected = {{"kt930pc", "Invalid Arguments For TuploadThread"},
                                           {"Error", InternalError}};
    EXPECT_EQ(sink.messages, expected);
}

TEST_F(TransferFixture, WithoutHostRecordDownloadReportsTheInternalErrorAndStillSaves)
{
    TAutoSeqEditFrame frame(nullptr, nullptr, nullptr, &sink);
    sink.messages.clear();
    answerSelector("radUSB", "btnConnect");
    click(&frame, "BtnDownload");
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"Error", InternalError}}));
    EXPECT_TRUE(std::filesystem::exists(appDir.data("mit.dat")));
}

TEST_F(TransferFixture, FailedEthernetDownloadLeavesFilesAndListsAlone)
{
    // A port that was free a moment ago: nothing listens there now.
    QTcpServer probe;
    ASSERT_TRUE(probe.listen(QHostAddress("127.0.0.3"), 0));
    probe.close();

    appDir.writeCompleteDataSet({sequence("EARTH", "BOND", {1})}, {"A", "B", "C", "D", "E"});
    const std::string before = TempDir::read(appDir.data("inspection.asq"));
    TAutoSeqEditFrame frame(nullptr, &host, &hostData2, &sink);
    whenModal([](QWidget *selector) {
        selector->findChild<QRadioButton *>("radEthernet")->click();
        const char *octets[] = {"127", "0", "0", "3"};
        for (int i = 0; i < 4; ++i)
            selector->findChild<QLineEdit *>(QStringLiteral("IP%1").arg(i + 1))->setText(octets[i]);
        selector->findChild<QPushButton *>("btnConnect")->click();
    });
    click(&frame, "BtnDownload");
    ASSERT_FALSE(sink.messages.empty()); // the worker's own report of the refused connection
    for (const Message &m : sink.messages)
        EXPECT_NE(m.text, InternalError);
    EXPECT_EQ(TempDir::read(appDir.data("inspection.asq")), before);
    EXPECT_EQ(frame.dataSet().inspections.size(), 1u);
}
