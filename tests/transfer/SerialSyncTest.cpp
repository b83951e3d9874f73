// Line failures of the checkitem sync over a serial port, with the test playing
// the analyzer on a pseudo-terminal reached as COM210.
#include "PtyPair.h"
#include "JobRun.h"
#include "TCommPort.h"
#include "TransferMessages.h"
#include <gtest/gtest.h>
#include <thread>

namespace {
constexpr int SyncPort = 210;
const char CommError[] = "A communications error occurred.\r\rOperation Canceled.";

struct SerialSync : ::testing::Test {
    void SetUp() override { TCommPort::setPortOverrides({{SyncPort, pty.slavePath}}); }
    void TearDown() override
    {
        if (analyzer.joinable())
            analyzer.join();
        TCommPort::setPortOverrides({});
    }
    // The analyzer answers the handshake, then "GUIN\r" with `image`.
    void answer(std::string image)
    {
        analyzer = std::thread([this, image] {
            if (pty.receive(5) != "GESI\r")
                return;
            pty.send(std::string(264, 'H'));
            if (image.empty() || pty.receive(5) != "GUIN\r")
                return;
            pty.send(image);
        });
    }
    void run()
    {
        TtransferJob::Parameters parameters;
        parameters.kind = TtransferJob::Kind::Sync;
        parameters.method = TcommMethod::Serial;
        parameters.serialPort = SyncPort;
        EXPECT_EQ(job.run(parameters), TtransferJob::Outcome::Failed);
    }
    PtyPair pty;
    std::thread analyzer;
    JobRun job;
    RecordingProgressSink &progress = job.progress;
    RecordingMessageSink &messages = job.messages;
};
}

// A port failure in a step shows that step's box, not the port's error table.
TEST_F(SerialSync, LineLostBeforeTheRequestIsDownloadFailed)
{
    answer({});
    progress.hookAtStage = "Handshake Valid - Beginning Download";
    progress.hook = [this] {
        analyzer.join();
        pty.hangUp();
    };
    run();
    EXPECT_EQ(messages.messages, std::vector<Message> {transferBox("Download Failed", CommError)});
    EXPECT_EQ(progress.stages.back(), "Sending Request for Data");
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Cancel});
}

TEST_F(SerialSync, LineLostDuringTheDataIsInvalidDataReceived)
{
    answer(std::string(100, 'x')); // part of the first chunk
    progress.hookAtPosition = 50;
    progress.hook = [this] {
        analyzer.join();
        pty.hangUp();
    };
    run();
    EXPECT_EQ(messages.messages, std::vector<Message> {transferBox("Invalid Data Received.", CommError)});
    EXPECT_EQ(progress.positions, std::vector<int> {50});
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Cancel});
}

// The port's own box, then the failure ends the run as any other escaping error.
TEST_F(SerialSync, MissingPortShowsTheSerialTableThenTheUnspecifiedError)
{
    TCommPort::setPortOverrides({{SyncPort, "/nonexistent/tty"}});
    run();
    EXPECT_EQ(messages.messages,
              (std::vector<Message> {{"Serial Port Error", "Open Error!"},
                                     transferBox("Error", "An unspecified error occurred.\nOperation Cancelled.")}));
    EXPECT_EQ(progress.stages,
              (std::vector<std::string> {"Requesting Serial Connection", "Initializing Serial Connection"}));
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Cancel});
}
