// A sync's serial line lost between the handshake and the request, the test playing the analyzer on
// a pseudo-terminal reached as COM210. Other line failures run against the simulator end to end.
#include "JobRun.h"
#include "PtyPair.h"
#include "TCommPort.h"
#include "TransferMessages.h"
#include <gtest/gtest.h>
#include <thread>

// A port failure in a step shows that step's box, not the port's error table.
TEST(SerialSync, LineLostBeforeTheRequestIsDownloadFailed)
{
    PtyPair pty;
    TCommPort::setPortOverrides({{210, pty.slavePath}});
    std::thread analyzer([&pty] {
        if (pty.receive(5) == "GESI\r")
            pty.send(std::string(264, 'H'));
    });
    JobRun run;
    run.progress.hookAtStage = "Handshake Valid - Beginning Download";
    run.progress.hook = [&] {
        analyzer.join();
        pty.hangUp();
    };
    EXPECT_EQ(run.run({.kind = TtransferJob::Kind::Sync, .method = TcommMethod::Serial, .serialPort = 210}),
              TtransferJob::Outcome::Failed);
    if (analyzer.joinable())
        analyzer.join();
    TCommPort::setPortOverrides({});
    EXPECT_EQ(run.messages.messages,
              std::vector<Message>{
                  transferBox("Download Failed", "A communications error occurred.\r\rOperation Canceled.")});
    EXPECT_EQ(run.progress.stages.back(), "Sending Request for Data");
}
