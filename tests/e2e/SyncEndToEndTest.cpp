// The checkitem sync worker against the real simulator, over TCP and over a
// pseudo-terminal (where a 4224-byte chunk is more than the terminal queues),
// unpaced and at the analyzer's 19200 baud.
#include "TransferRun.h"
#include <gtest/gtest.h>

namespace {
void syncReplacesTheDatabase(SimulatorUnderTest::Link link, int baud = 0)
{
    const KnownImages memory = KnownDataSet::images(4);
    SimulatorUnderTest sim(link, memory, {}, baud);
    ASSERT_TRUE(sim.ready());
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    auto record = std::make_unique<TsyncCommStruct>();
    sim.aim(record->settings);
    TinstSyncThread worker(&progress, &messages, record.get());
    // 45936 bytes at 1920 bytes a second take 24 s.
    ASSERT_TRUE(runToEnd(worker, baud ? 60000 : 20000));

    EXPECT_TRUE(messages.messages.empty()) << messages.messages.front().text;
    const std::string method = link == SimulatorUnderTest::Link::Tcp ? "Ethernet" : "Serial";
    EXPECT_EQ(progress.stages, (std::vector<std::string>{"Requesting " + method + " Connection",
                                                         "Initializing " + method + " Connection", "Sending Handshake",
                                                         "Handshake Valid - Beginning Download",
                                                         "Sending Request for Data", "Transfer Complete"}));
    // Eleven chunks of 4224 bytes, two points each.
    EXPECT_EQ(progress.positions, (std::vector<int>{50, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20}));
    EXPECT_EQ(progress.results, std::vector<TransferResult>{TransferResult::Ok});
    EXPECT_TRUE(bytesOf(record->area, 45936) == memory.checkitems);
    EXPECT_TRUE(bytesOf(record->area + 45936, sizeof record->area - 45936) == std::string(67584 - 45936, '\0'));

    DataSet expected, synced;
    KnownDataSet::fill(expected, 4);
    synced.checkitems[7].assign('Q', 'q', "replaced by the sync");
    record->copyInto(synced.checkitems);
    EXPECT_TRUE(KnownDataSet::snapshot(synced) == KnownDataSet::snapshot(DataSet{expected.checkitems, {}, {}, {}}));
}
}

TEST(SyncEndToEnd, CheckitemImageArrivesAndReplacesTheDatabase)
{
    syncReplacesTheDatabase(SimulatorUnderTest::Link::Tcp);
}

TEST(SyncEndToEnd, CheckitemImageArrivesOverASerialLine)
{
    syncReplacesTheDatabase(SimulatorUnderTest::Link::Pty);
}

// Each 4224-byte chunk needs 2.2 s of line time, more than 40 polls of 50 ms.
TEST(SyncEndToEnd, CheckitemImageArrivesOverA19200BaudLine)
{
    syncReplacesTheDatabase(SimulatorUnderTest::Link::Pty, 19200);
}
