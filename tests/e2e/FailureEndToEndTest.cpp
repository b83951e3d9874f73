// Failures provoked for real over both links: the simulator's injected faults, a cancel, a missing serial device
// (a refused connection runs through the command line). Each ends with its messages, without hanging; a failed
// download or sync leaves the data set and its files as they were, a failed upload the analyzer's memory.
#include "JobRun.h"
#include "KnownDataSet.h"
#include "SimulatorUnderTest.h"
#include "TCommPort.h"
#include "TransferMessages.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {
using Link = SimulatorUnderTest::Link;
using Kind = TtransferJob::Kind;
using ::testing::AnyOf;
using ::testing::Eq;
using ::testing::Matcher;
using Messages = std::vector<Matcher<Message>>;

const Message Disconnected{"Ethernet Disconnection Error",
                           "An unexpected disconnection has occurred.\rOperation Canceled"};
// A terminal that hangs up is a port error, which is no failure the block engine knows.
const Message HungUpOnGet = transferBox("VCL Exception", "Unknown Exception on Get Data Command"),
              HungUpOnPut = transferBox("VCL Exception", "Unknown Exception on Put Data Command");
const char SyncTimeoutText[] = "A communications timeout occurred.\r\rOperation Canceled.";
const Message SyncDataTimedOut = transferBox("Data Timed Out.", SyncTimeoutText);

struct Failure {
    const char *name;
    Kind kind;
    std::vector<std::string> faults;
    Messages overTcp, overPty; // none over the pseudo-terminal: those over TCP
    const char *lastStage;
    bool checkitemsStored = false; // an upload: the put before the failed one completed
    int cancelAtPosition = -1;
};

// Whether the next block still goes out before a close is seen decides between a failed send and a missing
// acknowledgement; both end the upload there.
const Failure Failures[] = {
    // clang-format off
    {"SilentAfterTheHandshake", Kind::Download, {"silent-after=GESI"}, {Eq(TimeoutError)}, {}, "Getting Checkitems"},
    {"ShortBlock", Kind::Download, {"short-block=1@GASQ"}, {Eq(TimeoutError)}, {}, "Getting Autosequences"},
    {"ClosedDuringADownload", Kind::Download, {"close-at-block=5@GTSP"}, {Eq(Disconnected), Eq(TimeoutError)},
     {Eq(HungUpOnGet)}, "Getting Checklists"},
    {"CancelBetweenBlocks", Kind::Download, {}, {Eq(OperationCancelled)}, {}, "Getting Checkitems", false, 70},
    {"WrongBlockAck", Kind::Upload, {"bad-ack-block=10@PUIN"}, {Eq(CommunicationsFailed)}, {}, "Putting Checkitems"},
    {"UnacknowledgedFirstBlock", Kind::Upload, {"no-ack-block=0@PUIN"}, {Eq(TimeoutError)}, {}, "Putting Checkitems"},
    {"ClosedDuringAnUpload", Kind::Upload, {"close-at-block=3@PASQ"},
     {Eq(Disconnected), AnyOf(TimeoutError, CommunicationsFailed)}, {Eq(HungUpOnPut)}, "Putting Autosequences", true},
    {"SyncSilentAfterTheHandshake", Kind::Sync, {"silent-after=GESI"}, {Eq(SyncDataTimedOut)},
     {Eq(transferBox("Data Transfer Timed Out.", SyncTimeoutText))}, "Sending Request for Data"},
    {"SyncClosedDuringTheData", Kind::Sync, {"close-at-block=3@GUIN"}, {Eq(Disconnected), Eq(SyncDataTimedOut)},
     {Eq(transferBox("Invalid Data Received.", "A communications error occurred.\r\rOperation Canceled."))},
     "Sending Request for Data"},
    // clang-format on
};

void PrintTo(const Failure &failure, std::ostream *out)
{
    *out << failure.name;
}

class FailedTransfer : public ::testing::TestWithParam<std::tuple<Link, Failure>> {
protected:
    void SetUp() override
    {
        KnownDataSet::fill(run.set, 2);
        ASSERT_TRUE(run.set.backup());
    }
    void TearDown() override { TCommPort::setPortOverrides({}); }

    std::string files() const { return run.file("mit.dat") + run.file("inspection.asq") + run.file("usertester1.asq"); }

    const KnownImages memory = KnownDataSet::images(1);
    JobRun run;
};
} // namespace

TEST_P(FailedTransfer, EndsWithItsMessagesAndChangesNothingItShouldNot)
{
    const auto &[link, failure] = GetParam();
    const std::string before = KnownDataSet::snapshot(run.set), filesBefore = files();
    run.progress.cancelAtPosition = failure.cancelAtPosition;
    SimulatorUnderTest sim(link, memory, failure.faults);
    ASSERT_TRUE(sim.ready());

    EXPECT_EQ(run.run(sim.job(failure.kind)), TtransferJob::Outcome::Failed);
    EXPECT_THAT(
        run.messages.messages,
        ::testing::ElementsAreArray(link == Link::Pty && !failure.overPty.empty() ? failure.overPty : failure.overTcp));
    EXPECT_EQ(run.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
    EXPECT_EQ(run.progress.stages.back(), failure.lastStage);
    EXPECT_TRUE(KnownDataSet::snapshot(run.set) + files() == before + filesBefore) << "containers or files changed";
    EXPECT_FALSE(std::filesystem::exists(run.set.dataFolder() / ".restore"));
    const KnownImages expected{failure.checkitemsStored ? KnownDataSet::images(2).checkitems : memory.checkitems,
                               memory.autosequences, memory.checklists};
    EXPECT_TRUE(sim.stopAndReadMemory().memoryFile() == expected.memoryFile()) << "analyzer memory differs";
}

INSTANTIATE_TEST_SUITE_P(OverEachLink, FailedTransfer,
                         ::testing::Combine(::testing::Values(Link::Tcp, Link::Pty), ::testing::ValuesIn(Failures)),
                         [](const auto &info) {
                             return (std::get<0>(info.param) == Link::Tcp ? "Tcp" : "Pty") +
                                    std::string(std::get<1>(info.param).name);
                         });

// The port's own box, then the failure that ends each kind of transfer there.
TEST(FailedTransferOverSerial, MissingDeviceShowsThePortsBoxThenTheConnectionFailure)
{
    for (const auto &[kind, failure, lastStage] :
         {std::tuple{Kind::Download, transferBox("Exception", "Could not initialize connection.\nOperation Canceled."),
                     "Initiating Handshake"},
          {Kind::Sync, transferBox("Error", "An unspecified error occurred.\nOperation Cancelled."),
           "Initializing Serial Connection"}}) {
        JobRun run;
        TCommPort::setPortOverrides({{SimulatorUnderTest::PtyComPort, (run.appDir / "no-such-tty").string()}});
        EXPECT_EQ(run.run({.kind = kind, .method = TcommMethod::Serial, .serialPort = SimulatorUnderTest::PtyComPort}),
                  TtransferJob::Outcome::Failed);
        TCommPort::setPortOverrides({});
        EXPECT_EQ(run.messages.messages, (std::vector<Message>{{"Serial Port Error", "Open Error!"}, failure}));
        EXPECT_EQ(run.progress.stages.back(), lastStage);
        EXPECT_FALSE(std::filesystem::exists(run.set.dataFile("mit.dat")));
    }
}
