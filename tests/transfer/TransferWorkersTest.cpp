#include "../comm/FakeUsbDevice.h"
#include "ByteBuilder.h"
#include "JobRun.h"
#include "TtransferJob.h"
#include "TransferMessages.h"
#include "Thrown.h"
#include "TransferWorkers.h"
#include <gtest/gtest.h>
#include <memory>

namespace {
using Kind = TtransferJob::Kind;

TtransferJob::Parameters job(Kind kind, TcommMethod method = TcommMethod::USB)
{
    TtransferJob::Parameters parameters;
    parameters.kind = kind;
    parameters.method = method;
    return parameters;
}

// The sync job over a fake USB line whose analyzer (vendor 0x0403) answers the
// handshake and then sends `data`, perPoll bytes a poll when perPoll is set.
struct SyncWorker : ::testing::Test {
    void answer(const std::string &data, std::size_t perPoll = 0)
    {
        fake.script->vendors = {0x0403};
        fake.script->incoming = std::string(264, 'H') + data;
        fake.script->perPoll = perPoll;
    }
    FakeUsbInstalled fake;
    JobRun sync;
};
}

TEST(TransferWorkerArguments, NullContextOrProgressIsRejected)
{
    RecordingMessageSink messages;
    TdataSet set({}, messages);
    const std::pair<Kind, const char *> cases[] = {
        {Kind::Download, "Invalid Arguments For TdownloadThread"},
        {Kind::Upload, "Invalid Arguments For TuploadThread"},
        {Kind::Verify, "Invalid Arguments For TdownloadThread"},
    };
    for (const auto &[kind, text] : cases) {
        TtransferJob::Parameters parameters;
        parameters.kind = kind;
        parameters.data = &set;
        TtransferJob job(parameters, messages);
        RecordingProgressSink progress;
        auto e = thrown<std::invalid_argument>([&] { job.makeWorker(progress); });
        EXPECT_STREQ(e ? e->what() : "no exception", text);
    }
    TsyncCommStruct sync;
    auto e = thrown<std::invalid_argument>([&] { TinstSyncThread(nullptr, nullptr, &sync); });
    EXPECT_STREQ(e ? e->what() : "no exception", "Invalid Arguments For TinstSyncThread(bool, TfrmProgress)");
}

TEST(TransferWorkerMethods, InvalidMethodCancelsWithoutConnecting)
{
    const std::pair<Kind, std::vector<std::string>> cases[] = {{Kind::Download, {"Initializing"}}, {Kind::Sync, {}}};
    for (const auto &[kind, stages] : cases) {
        JobRun run;
        EXPECT_EQ(run.run(job(kind, TcommMethod(3))), TtransferJob::Outcome::Failed);
        EXPECT_EQ(run.messages.messages,
                  std::vector<Message>{transferBox("Error", "Invalid State!\nOperation Cancelled.")});
        EXPECT_TRUE(run.progress.cancelled);
        EXPECT_EQ(run.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
        EXPECT_EQ(run.progress.stages, stages);
    }
}

TEST_F(SyncWorker, UsbSkipsDevicesOfOtherVendors)
{
    std::string checkitems(45936, '\0');
    checkitems.replace(1043 * 44, 44, ByteBuilder::checkitem('Z', 'L', "Leakage\t500"));
    answer(checkitems);
    fake.script->vendors = {0x1234, 0x0403};
    EXPECT_EQ(sync.run(job(Kind::Sync)), TtransferJob::Outcome::Completed);
    EXPECT_TRUE(sync.messages.messages.empty());
    EXPECT_EQ(fake.script->calls, (std::vector<std::string>{"open #0", "close", "open #1", "close"}));
    EXPECT_EQ(fake.script->written, "GESI\rGUIN\r");
    EXPECT_EQ(sync.progress.stages.front(), "Requesting USB Handle");
    EXPECT_EQ(sync.file("mit.dat").substr(1043 * 44), checkitems.substr(1043 * 44));
}

TEST_F(SyncWorker, UsbWithoutDevicesOrAnalyzer)
{
    sync.run(job(Kind::Sync));
    fake.script->vendors = {0x1234};
    sync.run(job(Kind::Sync));
    EXPECT_EQ(sync.messages.messages,
              (std::vector<Message>{
                  transferBox("Device Not Detected",
                       "A Safety Analyzer could not be found\rPlease check the connection.\r\rOperation Canceled."),
                  transferBox("Error", "Safety Analyzer Not Detected.\nPlease check connection.\n\nOperation Canceled.")}));
}

// An unplugged analyzer fails the step it happens in, with the serial path's text.
TEST_F(SyncWorker, UnplugIsACommunicationsError)
{
    answer("");
    fake.script->gone = true;
    sync.run(job(Kind::Sync));
    EXPECT_EQ(sync.messages.messages,
              std::vector<Message>{transferBox("Invalid Handshake Received.",
                                               "A communications error occurred.\r\rOperation Canceled.")});
    EXPECT_EQ(sync.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
}

// Unlike a data chunk (see the 19200-baud sync against the simulator), a handshake
// gets 40 polls however many bytes they bring.
TEST_F(SyncWorker, SilentAnalyzerFailsTheHandshakeAfterFortyPolls)
{
    answer({}, 100);
    fake.script->incoming = std::string(200, 'H'); // less than a handshake reply
    sync.run(job(Kind::Sync));
    EXPECT_EQ(fake.script->polls, 40);
    EXPECT_EQ(sync.messages.messages,
              std::vector<Message>{transferBox("Handshake Request Timed Out.",
                                               "A communications timeout occurred.\r\rOperation Canceled.")});
    EXPECT_EQ(fake.script->written, "GESI\r");
}
