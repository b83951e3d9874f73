// The frame's side of upload and download: what is saved when, the cancel
// paths, and the internal-error boxes.
#include "../e2e/SimulatorUnderTest.h"
#include "AutoSequenceEditorFrame.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "UiTestSupport.h"
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QListWidget>
#include <QTreeWidget>
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
    // Every row of the inspection list and every node of the tree.
    static QStringList texts(QWidget *frame)
    {
        QStringList all;
        auto *list = frame->findChild<QListWidget *>("lstIP");
        for (int i = 0; i < list->count(); ++i)
            all << list->item(i)->text();
        auto *tree = frame->findChild<QTreeWidget *>("LstUTS");
        for (int r = 0; r < tree->topLevelItemCount(); ++r) {
            all << tree->topLevelItem(r)->text(0);
            for (int c = 0; c < tree->topLevelItem(r)->childCount(); ++c)
                all << tree->topLevelItem(r)->child(c)->text(0);
        }
        return all;
    }
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

TEST_F(TransferFixture, RefusedEthernetDownloadReportsItAndLeavesFilesAndListsAlone)
{
    // A loopback address of this test program with nothing listening behind it.
    const QStringList octets = QString::fromStdString(SimulatorUnderTest::freshAddress()).split('.');
    appDir.writeCompleteDataSet({sequence("EARTH", "BOND", {1})}, {"A", "B", "C", "D", "E"});
    const std::string before = TempDir::read(appDir.data("inspection.asq"));
    const std::string checkitemsBefore = TempDir::read(appDir.data("mit.dat"));
    TAutoSeqEditFrame frame(nullptr, &host, &hostData2, &sink);
    const QStringList listBefore = texts(&frame);
    whenModal([octets](QWidget *selector) {
        selector->findChild<QRadioButton *>("radEthernet")->click();
        for (int i = 0; i < 4; ++i)
            selector->findChild<QLineEdit *>(QStringLiteral("IP%1").arg(i + 1))->setText(octets.value(i));
        selector->findChild<QPushButton *>("btnConnect")->click();
    });
    click(&frame, "BtnDownload");
    // The worker's own reports; the frame adds nothing, checks nothing, saves nothing.
    const std::vector<Message> expected = {
        {"Ethernet Connection Error", "An error occurred while attempting to connect.\rOperation Canceled."},
        {"Error", "Timeout Error.\nOperation Canceled.", MsgIcon::Stop, MsgButtons::Ok, MsgModality::System}};
    EXPECT_EQ(sink.messages, expected);
    EXPECT_EQ(TempDir::read(appDir.data("inspection.asq")), before);
    EXPECT_EQ(TempDir::read(appDir.data("mit.dat")), checkitemsBefore);
    EXPECT_EQ(frame.dataSet().inspections.size(), 1u);
    EXPECT_EQ(texts(&frame), listBefore);
}
