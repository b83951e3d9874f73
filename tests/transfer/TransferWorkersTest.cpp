#include "../comm/FakeUsbDevice.h"
#include "ByteBuilder.h"
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TransferFixtures.h"
#include "TransferMessages.h"
#include "Thrown.h"
#include "TransferWorkers.h"
#include <gtest/gtest.h>
#include <functional>
#include <memory>

namespace {
struct SyncRun {
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    std::unique_ptr<TsyncCommStruct> record = std::make_unique<TsyncCommStruct>();
    void run()
    {
        TinstSyncThread worker(&progress, &messages, record.get());
        worker.start();
        worker.wait();
    }
};

// The sync worker over a fake USB line whose analyzer (vendor 0x0403) answers the
// handshake and then sends `data`, perPoll bytes a poll when perPoll is set.
struct SyncWorker : ::testing::Test {
    void answer(const std::string &data, std::size_t perPoll = 0)
    {
        fake.script->vendors = {0x0403};
        fake.script->incoming = std::string(264, 'H') + data;
        fake.script->perPoll = perPoll;
    }
    FakeUsbInstalled fake;
    SyncRun sync;
};
}

TEST(TransferWorkerArguments, NullContextOrProgressIsRejected)
{
    DataSet set;
    RecordingProgressSink progress;
    TdownloadCommStruct download(&set.checkitems, &set.checklists, &set.testers, &set.inspections);
    auto upload = std::make_unique<TuploadCommStruct>(&set.checkitems, &set.checklists, &set.testers, &set.inspections);
    TsyncCommStruct sync;
    int context = 0;
    const std::pair<std::function<void()>, const char *> cases[] = {
        {[&] { TdownloadThread(nullptr, &progress, nullptr, &download); }, "Invalid Arguments For TdownloadThread"},
        {[&] { TuploadThread(&context, nullptr, nullptr, upload.get()); }, "Invalid Arguments For TuploadThread"},
        {[&] { TinstSyncThread(nullptr, nullptr, &sync); }, "Invalid Arguments For TinstSyncThread(bool, TfrmProgress)"},
    };
    for (const auto &[construct, text] : cases) {
        auto e = thrown<std::invalid_argument>(construct);
        EXPECT_STREQ(e ? e->what() : "no exception", text);
    }
}

TEST(TransferWorkerMethods, InvalidMethodCancelsWithoutConnecting)
{
    const Message invalidState = transferBox("Error", "Invalid State!\nOperation Cancelled.");
    DataSet set;
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    int context = 0;
    auto record = std::make_unique<TdownloadCommStruct>(&set.checkitems, &set.checklists, &set.testers, &set.inspections);
    record->settings().method = 3;
    TdownloadThread worker(&context, &progress, &messages, record.get());
    worker.start();
    worker.wait();
    EXPECT_EQ(messages.messages, std::vector<Message>{invalidState});
    EXPECT_TRUE(progress.cancelled);
    EXPECT_EQ(progress.results, std::vector<TransferResult>{TransferResult::Cancel});
    EXPECT_EQ(progress.stages, std::vector<std::string>{"Initializing"});

    SyncRun sync;
    sync.record->settings.method = 3;
    sync.run();
    EXPECT_EQ(sync.messages.messages, std::vector<Message>{invalidState});
    EXPECT_TRUE(sync.progress.cancelled);
    EXPECT_TRUE(sync.progress.stages.empty());
    EXPECT_EQ(sync.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
}

TEST_F(SyncWorker, UsbSkipsDevicesOfOtherVendors)
{
    std::string checkitems(45936, '\0');
    checkitems.replace(1043 * 44, 44, ByteBuilder::checkitem('Z', 'L', "Leakage\t500"));
    answer(checkitems);
    fake.script->vendors = {0x1234, 0x0403};
    sync.run();
    EXPECT_TRUE(sync.messages.messages.empty());
    EXPECT_EQ(fake.script->calls, (std::vector<std::string>{"open #0", "close", "open #1", "close"}));
    EXPECT_EQ(fake.script->written, "GESI\rGUIN\r");
    EXPECT_EQ(sync.progress.stages.front(), "Requesting USB Handle");
    EXPECT_EQ(std::string(reinterpret_cast<char *>(sync.record->area), 45936), checkitems);
    EXPECT_EQ(sync.progress.results, std::vector<TransferResult>{TransferResult::Ok});
}

TEST_F(SyncWorker, UsbWithoutDevicesOrAnalyzer)
{
    sync.run();
    fake.script->vendors = {0x1234};
    sync.run();
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
    sync.run();
    EXPECT_EQ(sync.messages.messages,
              std::vector<Message>{transferBox("Invalid Handshake Received.",
                                               "A communications error occurred.\r\rOperation Canceled.")});
    EXPECT_EQ(sync.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
}

// A slow line: a chunk takes longer than 40 polls to arrive. Only polls that bring
// no new byte count against the 40.
TEST_F(SyncWorker, ChunkThatKeepsArrivingIsWaitedFor)
{
    std::string checkitems(45936, '\0');
    for (std::size_t slot = 0; slot < 1044; slot += 7)
        checkitems.replace(slot * 44, 44, ByteBuilder::checkitem('A', 'P', "Slot " + std::to_string(slot)));
    answer(checkitems, 100); // 43 polls a chunk
    sync.run();
    EXPECT_TRUE(sync.messages.messages.empty()) << sync.messages.messages.front().caption;
    EXPECT_TRUE(std::string(reinterpret_cast<char *>(sync.record->area), 45936) == checkitems);
    EXPECT_EQ(sync.progress.positions, (std::vector<int>{50, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20}));
    EXPECT_EQ(sync.progress.results, std::vector<TransferResult>{TransferResult::Ok});
}

TEST_F(SyncWorker, SilenceEndsAChunkAfterFortyPollsWithoutANewByte)
{
    answer(std::string(1000, 'x'), 100);
    sync.run();
    // 3 polls bring the handshake (and 36 bytes of data), 10 more the rest of the
    // 1000 bytes, then 40 bring nothing.
    EXPECT_EQ(fake.script->polls, 3 + 10 + 40);
    EXPECT_EQ(sync.messages.messages,
              std::vector<Message>{transferBox("Data Transfer Timed Out.",
                                               "A communications timeout occurred.\r\rOperation Canceled.")});
    EXPECT_EQ(sync.progress.positions, std::vector<int>{50});
    EXPECT_EQ(sync.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
}

TEST_F(SyncWorker, SilentAnalyzerFailsTheHandshakeAfterFortyPolls)
{
    answer({}, 100);
    fake.script->incoming = std::string(200, 'H'); // less than a handshake reply
    sync.run();
    // The handshake keeps its 40 polls, growing or not.
    EXPECT_EQ(fake.script->polls, 40);
    EXPECT_EQ(sync.messages.messages,
              std::vector<Message>{transferBox("Handshake Request Timed Out.",
                                               "A communications timeout occurred.\r\rOperation Canceled.")});
    EXPECT_EQ(fake.script->written, "GESI\r");
}
