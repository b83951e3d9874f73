// The checkitem sync job against the real simulator, over TCP and over a pseudo-terminal (where a 4224-byte
// chunk is more than the terminal queues), unpaced and at the analyzer's 19200 baud.
#include "JobRun.h"
#include "KnownDataSet.h"
#include "SimulatorUnderTest.h"
#include "TransferMessages.h"
#include "TrestorePoints.h"
#include <gtest/gtest.h>

namespace {
using Link = SimulatorUnderTest::Link;
class SyncEndToEnd : public ::testing::TestWithParam<std::pair<Link, int>> {}; // the link and its baud rate
}

TEST_P(SyncEndToEnd, CheckitemImageReplacesTheDatabaseAloneAndIsSavedWithARestorePoint)
{
    const auto [link, baud] = GetParam();
    JobRun run;
    KnownDataSet::fill(run.set, 2);
    ASSERT_TRUE(run.set.backup());
    const std::string others = KnownDataSet::snapshot(run.set).substr(TInstrDatabase::SlotCount * sizeof(TInstr));
    const KnownImages memory = KnownDataSet::images(4);
    SimulatorUnderTest sim(link, memory, {}, baud);
    ASSERT_TRUE(sim.ready());
    ASSERT_EQ(run.run(sim.job(TtransferJob::Kind::Sync)), TtransferJob::Outcome::Completed);

    EXPECT_EQ(run.messages.messages, std::vector<Message>{});
    const std::string method = link == Link::Tcp ? "Ethernet" : "Serial";
    EXPECT_EQ(run.progress.stages,
              (std::vector<std::string>{
                  "Requesting " + method + " Connection", "Initializing " + method + " Connection", "Sending Handshake",
                  "Handshake Valid - Beginning Download", "Sending Request for Data", "Transfer Complete"}));
    // Eleven chunks of 4224 bytes, two points each.
    EXPECT_EQ(run.progress.positions, (std::vector<int>{50, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20}));
    EXPECT_TRUE(KnownDataSet::snapshot(run.set) == memory.checkitems + others) << "not the checkitems alone replaced";
    EXPECT_TRUE(run.file("mit.dat") == memory.checkitems);
    const std::vector<TrestorePoint> points = TrestorePoints(run.set.dataFolder()).list();
    ASSERT_EQ(points.size(), 1u);
    EXPECT_EQ(std::pair(points[0].action, points[0].files),
              std::pair(std::string("sync"), std::vector<std::string>{"mit.dat"}));
}

// At 19200 baud each 4224-byte chunk needs 2.2 s of line time, more than 40 polls of 50 ms.
INSTANTIATE_TEST_SUITE_P(EachLine, SyncEndToEnd,
                         ::testing::Values(std::pair{Link::Tcp, 0}, std::pair{Link::Pty, 0},
                                           std::pair{Link::Pty, 19200}),
                         [](const auto &info) {
                             return (info.param.first == Link::Tcp ? "Tcp" : "Pty") + std::to_string(info.param.second);
                         });
