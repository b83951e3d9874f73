// Failures provoked for real: the simulator's injected faults, a missing serial
// device, and a cancel (a refused connection runs through the command line).
// Each ends with its message, without hanging; a failed download leaves the
// containers as they were, a failed upload the analyzer's memory.
#include "TCommPort.h"
#include "TransferRun.h"
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {
using Link = SimulatorUnderTest::Link;

class FailedTransfer : public ::testing::Test {
protected:
    void SetUp() override
    {
        KnownDataSet::fill(run.set, 2);
        before = KnownDataSet::snapshot(run.set);
    }
    void TearDown() override { TCommPort::setPortOverrides({}); }

    // A full download against a simulator with these faults.
    void download(const std::vector<std::string> &faults)
    {
        SimulatorUnderTest sim(Link::Tcp, memory, faults);
        ASSERT_TRUE(sim.ready());
        download([&](TcommSettings &settings) { sim.aim(settings); });
    }
    void download(const std::function<void(TcommSettings &)> &aim)
    {
        auto record = run.downloadRecord(SelectAll);
        aim(record->settings());
        TdownloadThread worker(&run.context, &run.progress, &run.messages, record.get());
        ASSERT_TRUE(runToEnd(worker));
        EXPECT_EQ(run.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
        EXPECT_TRUE(KnownDataSet::snapshot(run.set) == before) << "containers changed";
    }

    // A full upload against a simulator with these faults; its memory afterwards.
    KnownImages upload(const std::vector<std::string> &faults)
    {
        SimulatorUnderTest sim(Link::Tcp, memory, faults);
        EXPECT_TRUE(sim.ready());
        auto record = run.uploadRecord(SelectAll);
        sim.aim(record->settings());
        TuploadThread worker(&run.context, &run.progress, &run.messages, record.get());
        EXPECT_TRUE(runToEnd(worker));
        EXPECT_EQ(run.progress.results, std::vector<TransferResult>{TransferResult::Cancel});
        return sim.stopAndReadMemory();
    }

    const KnownImages memory = KnownDataSet::images(1);
    TransferRun run;
    std::string before;
};
}

TEST_F(FailedTransfer, AnalyzerSilentAfterTheHandshakeTimesOut)
{
    download({"silent-after=GESI"});
    EXPECT_EQ(run.messages.messages, std::vector<Message>{TimeoutError});
    EXPECT_EQ(run.progress.stages.back(), "Getting Checkitems");
}

TEST_F(FailedTransfer, ShortBlockTimesOut)
{
    download({"short-block=1@GASQ"});
    EXPECT_EQ(run.messages.messages, std::vector<Message>{TimeoutError});
    EXPECT_EQ(run.progress.stages.back(), "Getting Autosequences");
}

TEST_F(FailedTransfer, ConnectionClosedInTheMiddleOfADownload)
{
    download({"close-at-block=5@GTSP"});
    EXPECT_EQ(run.messages.messages,
              (std::vector<Message>{{"Ethernet Disconnection Error",
                                     "An unexpected disconnection has occurred.\rOperation Canceled"},
                                    TimeoutError}));
    EXPECT_EQ(run.progress.stages.back(), "Getting Checklists");
}

TEST_F(FailedTransfer, CancelBetweenBlocksStopsTheDownload)
{
    run.progress.cancelAtPosition = 70; // half way through the checkitem blocks
    download(std::vector<std::string>{});
    EXPECT_EQ(run.messages.messages, std::vector<Message>{OperationCancelled});
    EXPECT_EQ(run.progress.stages.back(), "Getting Checkitems");
}

TEST_F(FailedTransfer, MissingSerialDevice)
{
    TempDir temp;
    TCommPort::setPortOverrides({{SimulatorUnderTest::PtyComPort, (temp / "no-such-tty").string()}});
    download([](TcommSettings &settings) {
        settings.method = std::uint8_t(TcommMethod::Serial);
        settings.serialPort = SimulatorUnderTest::PtyComPort;
    });
    EXPECT_EQ(run.messages.messages,
              (std::vector<Message>{{"Serial Port Error", "Open Error!"},
                                    transferBox("Exception", "Could not initialize connection.\nOperation Canceled.")}));
    EXPECT_EQ(run.progress.stages.back(), "Initiating Handshake");
}

TEST_F(FailedTransfer, WrongBlockAckStopsTheUploadAndTheAnalyzerKeepsItsMemory)
{
    EXPECT_TRUE(upload({"bad-ack-block=10@PUIN"}).memoryFile() == memory.memoryFile());
    EXPECT_EQ(run.messages.messages, std::vector<Message>{CommunicationsFailed});
    EXPECT_EQ(run.progress.stages.back(), "Putting Checkitems");
}

TEST_F(FailedTransfer, UnacknowledgedFirstBlockTimesOutTheUpload)
{
    EXPECT_TRUE(upload({"no-ack-block=0@PUIN"}).memoryFile() == memory.memoryFile());
    EXPECT_EQ(run.messages.messages, std::vector<Message>{TimeoutError});
}

TEST_F(FailedTransfer, ConnectionClosedInTheMiddleOfAnUpload)
{
    // The checkitems were stored before; the interrupted put changed nothing.
    KnownImages expected = memory;
    expected.checkitems = KnownDataSet::images(2).checkitems;
    EXPECT_TRUE(upload({"close-at-block=3@PASQ"}).memoryFile() == expected.memoryFile());
    // Whether the next block still goes out before the close is seen decides between
    // a failed send and a missing acknowledgement; both end the upload there.
    ASSERT_EQ(run.messages.messages.size(), 2u);
    EXPECT_EQ(run.messages.messages[0], (Message{"Ethernet Disconnection Error",
                                                 "An unexpected disconnection has occurred.\rOperation Canceled"}));
    EXPECT_THAT(run.messages.messages[1], ::testing::AnyOf(TimeoutError, CommunicationsFailed));
    EXPECT_EQ(run.progress.stages.back(), "Putting Autosequences");
}
