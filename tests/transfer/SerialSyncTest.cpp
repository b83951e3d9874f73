// The serial line of a checkitem sync lost between the handshake and the request,
// with the test playing the analyzer on a pseudo-terminal reached as COM210.
// Other line failures run against the simulator in the end-to-end tests.
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
    // The analyzer answers the handshake.
    void answer()
    {
        analyzer = std::thread([this] {
            if (pty.receive(5) == "GESI\r")
                pty.send(std::string(264, 'H'));
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
    answer();
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

