#include "LoopbackAddress.h"
#include "FakeAnalyzerPeer.h"
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TDataCommClass.h"
#include "TprogressCommModule.h"
#include <gtest/gtest.h>
#include <memory>

namespace {
const std::uint8_t *bytes(const char *text) { return reinterpret_cast<const std::uint8_t *>(text); }

std::string pattern(std::size_t blocks)
{
    std::string data(blocks * 264, '\0');
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = char((i * 7 + i / 264) & 0xFF);
    return data;
}

TtransportParams ethernetTo(const LoopbackAddress &at)
{
    return TtransportParams::makeEthernet(at.a, at.b, at.c, at.d);
}

// An engine over an Ethernet module aimed at the peer of LoopbackAddress(test).
struct EngineLink {
    explicit EngineLink(int test)
        : parameters(ethernetTo(LoopbackAddress(test))),
          module(&holder, ModeEthernet, 2000, 264, &parameters, progress, messages),
          engine(&holder, ModeEthernet, 2000, 264, &parameters, &module, false, messages)
    {
    }
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    QRTcommClass holder;
    TtransportParams parameters;
    TprogressCommModule module;
    TDataCommClass engine;
};

std::string answerPut(FakeAnalyzerPeer &peer, const std::string &commandAck, std::vector<std::string> blockAcks)
{
    std::string command = peer.read(5);
    peer.send(commandAck);
    for (const std::string &ack : blockAcks) {
        if (peer.read(264).size() < 264)
            break;
        peer.send(ack);
    }
    return command;
}
}

TEST(TDataCommClassArguments, ZeroLengthsAndMissingBlockSize)
{
    RecordingMessageSink messages;
    QRTcommClass holder;
    TtransportParams parameters = TtransportParams::makeUSB();
    TDataCommClass engine(&holder, ModeUSB, 2000, 264, &parameters, nullptr, true, messages);
    std::uint8_t buffer[264];
    EXPECT_THROW(engine.getData(bytes("GUIN\r"), 5, buffer, 0), TinvalidDataLengthException);
    EXPECT_THROW(engine.getData(bytes("GUIN\r"), 0, buffer, 1), TinvalidDataLengthException);
    EXPECT_EQ(engine.putData(bytes("PUIN\r"), 5, buffer, 0), -1);
    EXPECT_EQ(engine.putData(bytes("PUIN\r"), 0, buffer, 1), -1);

    TDataCommClass noBlocks(&holder, ModeUSB, 2000, 0, &parameters, nullptr, true, messages);
    EXPECT_THROW(noBlocks.getData(bytes("GUIN\r"), 5, buffer, 1), TinvalidCommModuleException);
    EXPECT_THROW(noBlocks.putData(bytes("PUIN\r"), 5, buffer, 1), TinvalidCommModuleException);
}

TEST(TDataCommClassGet, ReceivesBlocksByteExactAndMovesBarTo90)
{
    const std::string data = pattern(3);
    FakeAnalyzerPeer peer(LoopbackAddress(1).text(), [&](FakeAnalyzerPeer &p) {
        p.read(5);
        p.send(data);
    });
    EngineLink link(1);
    ASSERT_EQ(link.engine.open(), 0);
    std::string buffer(3 * 264, 'x');
    EXPECT_EQ(link.engine.getData(bytes("GTSP\r"), 5, reinterpret_cast<std::uint8_t *>(buffer.data()), 3), 0);
    EXPECT_EQ(buffer, data);
    EXPECT_EQ(link.progress.positions, (std::vector<int> {50, 63, 76, 90}));
    link.engine.close();
    peer.join();
    EXPECT_EQ(peer.received, "GTSP\r"); // no acknowledgements from the PC
    EXPECT_TRUE(link.messages.messages.empty());
}

TEST(TDataCommClassGet, CancelBetweenBlocksThrows)
{
    FakeAnalyzerPeer peer(LoopbackAddress(2).text(), [&](FakeAnalyzerPeer &p) {
        p.read(5);
        p.send(pattern(3));
    });
    EngineLink link(2);
    link.progress.cancelAtPosition = 63;
    ASSERT_EQ(link.engine.open(), 0);
    std::string buffer(3 * 264, 'x');
    EXPECT_THROW(link.engine.getData(bytes("GUIN\r"), 5, reinterpret_cast<std::uint8_t *>(buffer.data()), 3),
                 ToperationCancelledException);
    EXPECT_EQ(link.progress.positions, (std::vector<int> {50, 63}));
}

TEST(TDataCommClassPut, SendsCommandThenBlocksWithAcks)
{
    const std::string data = pattern(3);
    FakeAnalyzerPeer peer(LoopbackAddress(3).text(),
                          [&](FakeAnalyzerPeer &p) { answerPut(p, "*\r", {"C\r", "C\r", "*\r"}); });
    EngineLink link(3);
    ASSERT_EQ(link.engine.open(), 0);
    EXPECT_EQ(link.engine.putData(bytes("PTSP\r"), 5, bytes(data.data()), 3), 0);
    EXPECT_EQ(link.progress.positions, (std::vector<int> {30, 63, 76, 90}));
    link.engine.close();
    peer.join();
    EXPECT_EQ(peer.received, "PTSP\r" + data);
}

TEST(TDataCommClassPut, CommandAckIsLenient)
{
    const std::string data = pattern(1);
    // "C\r": the second byte is CR; "*Z": the first byte is '*'. Both accept.
    FakeAnalyzerPeer first(LoopbackAddress(4).text(), [&](FakeAnalyzerPeer &p) { answerPut(p, "C\r", {"*\r"}); });
    EngineLink a(4);
    ASSERT_EQ(a.engine.open(), 0);
    EXPECT_EQ(a.engine.putData(bytes("PASQ\r"), 5, bytes(data.data()), 1), 0);

    FakeAnalyzerPeer second(LoopbackAddress(5).text(), [&](FakeAnalyzerPeer &p) { answerPut(p, "*Z", {"*\r"}); });
    EngineLink b(5);
    ASSERT_EQ(b.engine.open(), 0);
    EXPECT_EQ(b.engine.putData(bytes("PASQ\r"), 5, bytes(data.data()), 1), 0);

    FakeAnalyzerPeer third(LoopbackAddress(6).text(), [&](FakeAnalyzerPeer &p) { answerPut(p, "ZZ", {}); });
    EngineLink c(6);
    ASSERT_EQ(c.engine.open(), 0);
    EXPECT_EQ(c.engine.putData(bytes("PASQ\r"), 5, bytes(data.data()), 1), -2);
    EXPECT_EQ(c.module.isOpen(), TgenericCommmunicationsModule::Idle);
    third.join();
    EXPECT_EQ(third.received, "PASQ\r"); // no block after a refused command
}

TEST(TDataCommClassPut, BlockAcksAreStrict)
{
    const std::string data = pattern(2);
    FakeAnalyzerPeer early(LoopbackAddress(7).text(), [&](FakeAnalyzerPeer &p) { answerPut(p, "*\r", {"*\r"}); });
    EngineLink a(7);
    ASSERT_EQ(a.engine.open(), 0);
    EXPECT_EQ(a.engine.putData(bytes("PUIN\r"), 5, bytes(data.data()), 2), -2);
    early.join();
    EXPECT_EQ(early.received, "PUIN\r" + data.substr(0, 264));

    FakeAnalyzerPeer late(LoopbackAddress(8).text(), [&](FakeAnalyzerPeer &p) { answerPut(p, "*\r", {"C\r", "C\r"}); });
    EngineLink b(8);
    ASSERT_EQ(b.engine.open(), 0);
    EXPECT_EQ(b.engine.putData(bytes("PUIN\r"), 5, bytes(data.data()), 2), -2);

    FakeAnalyzerPeer noCr(LoopbackAddress(9).text(), [&](FakeAnalyzerPeer &p) { answerPut(p, "*\r", {"C\n"}); });
    EngineLink c(9);
    ASSERT_EQ(c.engine.open(), 0);
    EXPECT_EQ(c.engine.putData(bytes("PUIN\r"), 5, bytes(data.data()), 2), -2);
}

TEST(TDataCommClassPut, CancelBetweenBlocksStopsSending)
{
    const std::string data = pattern(3);
    FakeAnalyzerPeer peer(LoopbackAddress(10).text(),
                          [&](FakeAnalyzerPeer &p) { answerPut(p, "*\r", {"C\r", "C\r", "*\r"}); });
    EngineLink link(10);
    link.progress.cancelAtPosition = 63;
    ASSERT_EQ(link.engine.open(), 0);
    EXPECT_THROW(link.engine.putData(bytes("PTSP\r"), 5, bytes(data.data()), 3), ToperationCancelledException);
    link.engine.close();
    peer.join();
    EXPECT_EQ(peer.received, "PTSP\r" + data.substr(0, 264));
}

TEST(TDataCommClassGet, MissingBlockAfter40PollsClosesAndThrows)
{
    FakeAnalyzerPeer peer(LoopbackAddress(31).text(), [](FakeAnalyzerPeer &p) {
        p.read(5);
        p.send(std::string(100, 'x')); // part of a block only
    });
    EngineLink link(31);
    ASSERT_EQ(link.engine.open(), 0);
    std::uint8_t buffer[264];
    EXPECT_THROW(link.engine.getData(bytes("GESI\r"), 5, buffer, 1), TcommTimeoutException);
    EXPECT_EQ(link.module.isOpen(), TgenericCommmunicationsModule::Idle);
}
