// The slow cases, kept together: each waits out a documented time-out (about 2 s).
#include "../comm/LoopbackAddress.h"
#include "FakeAnalyzerPeer.h"
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TDataCommClass.h"
#include "TprogressCommModule.h"
#include "TransferFixtures.h"
#include "TransferWorkers.h"
#include <gtest/gtest.h>
#include <memory>

namespace {
const Message TimeoutBox {"Error", "Timeout Error.\nOperation Canceled.", MsgIcon::Stop, MsgButtons::Ok,
                          MsgModality::System};
}

TEST(Timeouts, MissingDownloadBlockAfter40PollsClosesAndThrows)
{
    FakeAnalyzerPeer peer(LoopbackAddress(31).text(), [](FakeAnalyzerPeer &p) {
        p.read(5);
        p.send(std::string(100, 'x')); // part of a block only
    });
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    QRTcommClass holder;
    TtransportParams parameters = LoopbackAddress(31).ethernet();
    TprogressCommModule module(&holder, ModeEthernet, 2000, 264, &parameters, progress, messages);
    TDataCommClass engine(&holder, ModeEthernet, 2000, 264, &parameters, &module, false, messages);
    ASSERT_EQ(engine.open(), 0);
    std::uint8_t buffer[264];
    EXPECT_THROW(engine.getData(reinterpret_cast<const std::uint8_t *>("GESI\r"), 5, buffer, 1), TcommTimeoutException);
    EXPECT_EQ(module.isOpen(), TgenericCommmunicationsModule::Idle);
}

TEST(Timeouts, UnacknowledgedFirstBlockFailsTheUpload)
{
    FakeAnalyzerPeer peer(LoopbackAddress(32).text(), [](FakeAnalyzerPeer &p) {
        p.read(5);
        p.send(std::string(264, 'H'));
        p.read(5);
        p.send("*\r");
        p.read(264); // never acknowledged
    });
    DataSet set;
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    auto record = std::make_unique<TuploadCommStruct>(&set.checkitems, &set.checklists, &set.testers, &set.inspections);
    record->settings().method = std::uint8_t(TcommMethod::Ethernet);
    const LoopbackAddress address(32);
    record->settings().ip[0] = address.a;
    record->settings().ip[1] = address.b;
    record->settings().ip[2] = address.c;
    record->settings().ip[3] = address.d;
    record->data.selection = SelectAll;
    int context = 0;
    TuploadThread worker(&context, &progress, &messages, record.get());
    worker.start();
    worker.wait();
    EXPECT_EQ(messages.messages, std::vector<Message> {TimeoutBox});
    EXPECT_EQ(progress.results, std::vector<TransferResult> {TransferResult::Cancel});
}
