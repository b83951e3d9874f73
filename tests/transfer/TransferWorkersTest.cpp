#include "../comm/FakeUsbDevice.h"
#include "ByteBuilder.h"
#include "JobRun.h"
#include "Thrown.h"
#include "TransferMessages.h"
#include "TransferWorkers.h"
#include "TtransferJob.h"
#include <gtest/gtest.h>

namespace {
using Kind = TtransferJob::Kind;
const char *whatOf(const std::optional<std::invalid_argument> &e) { return e ? e->what() : "no exception"; }

// The sync job over a fake USB line whose analyzer (vendor 0x0403) answers the handshake, then sends `data`.
struct SyncWorker : ::testing::Test {
    void answer(const std::string &data, std::size_t perPoll = 0)
    {
        fake.script->vendors = {0x0403};
        fake.script->incoming = std::string(264, 'H') + data;
        fake.script->perPoll = perPoll;
    }
    TtransferJob::Outcome sync() { return run.run({.kind = Kind::Sync}); }
    FakeUsbInstalled fake;
    JobRun run;
};
}

TEST(TransferWorkerArguments, NullContextOrProgressIsRejected)
{
    RecordingMessageSink messages;
    TdataSet set({}, messages);
    for (const auto &[kind, text] : {std::pair{Kind::Download, "Invalid Arguments For TdownloadThread"},
                                     {Kind::Upload, "Invalid Arguments For TuploadThread"},
                                     {Kind::Verify, "Invalid Arguments For TdownloadThread"}}) {
        TtransferJob job({.kind = kind, .data = &set}, messages);
        RecordingProgressSink progress;
        EXPECT_STREQ(whatOf(thrown<std::invalid_argument>([&] { job.makeWorker(progress); })), text);
    }
    TsyncCommStruct sync;
    EXPECT_STREQ(whatOf(thrown<std::invalid_argument>([&] { TinstSyncThread(nullptr, nullptr, &sync); })),
                 "Invalid Arguments For TinstSyncThread(bool, TfrmProgress)");
}

TEST(TransferWorkerMethods, InvalidMethodCancelsWithoutConnecting)
{
    for (const auto &[kind, stages] :
         {std::pair{Kind::Download, std::vector<std::string>{"Initializing"}}, {Kind::Sync, {}}}) {
        JobRun run;
        EXPECT_EQ(run.run({.kind = kind, .method = TcommMethod(3)}), TtransferJob::Outcome::Failed);
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
    EXPECT_EQ(sync(), TtransferJob::Outcome::Completed);
    EXPECT_TRUE(run.messages.messages.empty());
    EXPECT_EQ(fake.script->calls, (std::vector<std::string>{"open #0", "close", "open #1", "close"}));
    EXPECT_EQ(fake.script->written, "GESI\rGUIN\r");
    EXPECT_EQ(run.file("mit.dat").substr(1043 * 44), checkitems.substr(1043 * 44));
}

// Without any device the box is the USB stack test's. An unplugged analyzer fails the step it happens in.
TEST_F(SyncWorker, UsbDevicesOfOtherVendorsOnlyAreNoAnalyzerAnUnpluggedOneACommunicationsError)
{
    fake.script->vendors = {0x1234};
    sync();
    answer("");
    fake.script->gone = true;
    sync();
    EXPECT_EQ(
        run.messages.messages,
        (std::vector<Message>{
            transferBox("Error", "Safety Analyzer Not Detected.\nPlease check connection.\n\nOperation Canceled."),
            transferBox("Invalid Handshake Received.", "A communications error occurred.\r\rOperation Canceled.")}));
}

// Unlike a data chunk (see the 19200-baud sync end to end), a handshake gets 40 polls however many bytes they bring.
TEST_F(SyncWorker, SilentAnalyzerFailsTheHandshakeAfterFortyPolls)
{
    answer({}, 100);
    fake.script->incoming = std::string(200, 'H'); // less than a handshake reply
    sync();
    EXPECT_EQ(fake.script->polls, 40);
    EXPECT_EQ(run.messages.messages,
              std::vector<Message>{transferBox("Handshake Request Timed Out.",
                                               "A communications timeout occurred.\r\rOperation Canceled.")});
    EXPECT_EQ(fake.script->written, "GESI\r");
}
