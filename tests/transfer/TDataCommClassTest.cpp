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

// The analyzer played by a script on LoopbackAddress(test), and an engine over an
// Ethernet module aimed at it.
struct EngineLink {
    EngineLink(int test, FakeAnalyzerPeer::Script script)
        : peer(LoopbackAddress(test).text(), std::move(script)), parameters(ethernetTo(LoopbackAddress(test))),
          module(&holder, ModeEthernet, 2000, 264, &parameters, progress, messages),
          engine(&holder, ModeEthernet, 2000, 264, &parameters, &module, false, messages)
    {
    }
    // Closes the link and waits for the script to end; returns all the engine sent.
    std::string finish()
    {
        engine.close();
        peer.join();
        return peer.received;
    }
    FakeAnalyzerPeer peer;
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
    EngineLink link(1, [&](FakeAnalyzerPeer &p) {
        p.read(5);
        p.send(data);
    });
    ASSERT_EQ(link.engine.open(), 0);
    std::string buffer(3 * 264, 'x');
    EXPECT_EQ(link.engine.getData(bytes("GTSP\r"), 5, reinterpret_cast<std::uint8_t *>(buffer.data()), 3), 0);
    EXPECT_EQ(buffer, data);
    EXPECT_EQ(link.progress.positions, (std::vector<int> {50, 63, 76, 90}));
    EXPECT_EQ(link.finish(), "GTSP\r"); // no acknowledgements from the PC
    EXPECT_TRUE(link.messages.messages.empty());
}

TEST(TDataCommClassGet, CancelBetweenBlocksThrows)
{
    EngineLink link(2, [&](FakeAnalyzerPeer &p) {
        p.read(5);
        p.send(pattern(3));
    });
    link.progress.cancelAtPosition = 63;
    ASSERT_EQ(link.engine.open(), 0);
    std::string buffer(3 * 264, 'x');
    EXPECT_THROW(link.engine.getData(bytes("GUIN\r"), 5, reinterpret_cast<std::uint8_t *>(buffer.data()), 3),
                 ToperationCancelledException);
    EXPECT_EQ(link.progress.positions, (std::vector<int> {50, 63}));
}

TEST(TDataCommClassPut, CommandAckIsLenientBlockAcksAreStrict)
{
    struct Case {
        std::string commandAck;
        std::vector<std::string> blockAcks;
        std::size_t blocks;
        int result;
        std::size_t blocksSent;
    };
    const Case cases[] = {
        {"*\r", {"C\r", "C\r", "*\r"}, 3, 0, 3},
        {"C\r", {"*\r"}, 1, 0, 1}, // the command's ack needs a CR second
        {"*Z", {"*\r"}, 1, 0, 1},  // or a '*' first
        {"ZZ", {}, 1, -2, 0},      // no block after a refused command
        {"*\r", {"*\r"}, 2, -2, 1}, // the last-block ack too early
        {"*\r", {"C\r", "C\r"}, 2, -2, 2}, // an intermediate ack on the last block
        {"*\r", {"C\n"}, 2, -2, 1},
    };
    int test = 3;
    for (const Case &c : cases) {
        const std::string data = pattern(c.blocks);
        EngineLink link(test++, [&](FakeAnalyzerPeer &p) { answerPut(p, c.commandAck, c.blockAcks); });
        ASSERT_EQ(link.engine.open(), 0);
        EXPECT_EQ(link.engine.putData(bytes("PTSP\r"), 5, bytes(data.data()), c.blocks), c.result) << test;
        if (c.result != 0) {
            EXPECT_EQ(link.module.isOpen(), TgenericCommmunicationsModule::Idle) << test;
        } else if (c.blocks == 3) {
            EXPECT_EQ(link.progress.positions, (std::vector<int>{30, 63, 76, 90}));
        }
        EXPECT_EQ(link.finish(), "PTSP\r" + data.substr(0, c.blocksSent * 264)) << test;
    }
}

TEST(TDataCommClassPut, CancelBetweenBlocksStopsSending)
{
    const std::string data = pattern(3);
    EngineLink link(20, [&](FakeAnalyzerPeer &p) { answerPut(p, "*\r", {"C\r", "C\r", "*\r"}); });
    link.progress.cancelAtPosition = 63;
    ASSERT_EQ(link.engine.open(), 0);
    EXPECT_THROW(link.engine.putData(bytes("PTSP\r"), 5, bytes(data.data()), 3), ToperationCancelledException);
    EXPECT_EQ(link.finish(), "PTSP\r" + data.substr(0, 264));
}

TEST(TDataCommClassGet, MissingBlockAfter40PollsClosesAndThrows)
{
    EngineLink link(31, [](FakeAnalyzerPeer &p) {
        p.read(5);
        p.send(std::string(100, 'x')); // part of a block only
    });
    ASSERT_EQ(link.engine.open(), 0);
    std::uint8_t buffer[264];
    EXPECT_THROW(link.engine.getData(bytes("GESI\r"), 5, buffer, 1), TcommTimeoutException);
    EXPECT_EQ(link.module.isOpen(), TgenericCommmunicationsModule::Idle);
}
