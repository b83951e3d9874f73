// The block engine over a scripted USB line: what it sends, which acknowledgements it accepts, its bar,
// and a cancel between blocks. Whole transfers, time-outs and cancelled downloads run end to end.
#include "../comm/FakeUsbDevice.h"
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TDataCommClass.h"
#include "TprogressCommModule.h"
#include <gtest/gtest.h>

namespace {
const std::uint8_t *bytes(const std::string &text) { return reinterpret_cast<const std::uint8_t *>(text.data()); }

std::string pattern(std::size_t blocks)
{
    std::string data(blocks * 264, '\0');
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = char((i * 7 + i / 264) & 0xFF);
    return data;
}

// An open engine over a USB module whose analyzer has `incoming` for it.
struct EngineLink {
    explicit EngineLink(const std::string &incoming)
    {
        fake.script->descriptions = {"Brennix Systems KT930 Plus"};
        fake.script->incoming = incoming;
        EXPECT_EQ(engine.open(), 0);
    }
    FakeUsbInstalled fake;
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    QRTcommClass holder;
    TtransportParams parameters = TtransportParams::makeUSB();
    TprogressCommModule module{&holder, ModeUSB, 2000, 264, &parameters, progress, messages};
    TDataCommClass engine{&holder, ModeUSB, 2000, 264, &parameters, &module, false, messages};
};
}

TEST(TDataCommClassArguments, ZeroLengthsAndMissingBlockSize)
{
    EngineLink l("");
    TDataCommClass engine(&l.holder, ModeUSB, 2000, 264, &l.parameters, nullptr, true, l.messages);
    std::uint8_t buffer[264];
    EXPECT_THROW(engine.getData(bytes("GUIN\r"), 5, buffer, 0), TinvalidDataLengthException);
    EXPECT_THROW(engine.getData(bytes("GUIN\r"), 0, buffer, 1), TinvalidDataLengthException);
    EXPECT_EQ(std::pair(engine.putData(bytes("PUIN\r"), 5, buffer, 0), engine.putData(bytes("PUIN\r"), 0, buffer, 1)),
              std::pair(-1, -1));
    TDataCommClass noBlocks(&l.holder, ModeUSB, 2000, 0, &l.parameters, nullptr, true, l.messages);
    EXPECT_THROW(noBlocks.getData(bytes("GUIN\r"), 5, buffer, 1), TinvalidCommModuleException);
    EXPECT_THROW(noBlocks.putData(bytes("PUIN\r"), 5, buffer, 1), TinvalidCommModuleException);
}

// The analyzer takes anything after a get as its next command: nothing may follow.
TEST(TDataCommClassGet, ReceivesBlocksByteExactWithoutAcknowledging)
{
    const std::string data = pattern(3);
    EngineLink link(data);
    std::string buffer(3 * 264, 'x');
    EXPECT_EQ(link.engine.getData(bytes("GTSP\r"), 5, reinterpret_cast<std::uint8_t *>(buffer.data()), 3), 0);
    EXPECT_EQ(buffer, data);
    EXPECT_EQ(link.fake.script->written, "GTSP\r");
}

TEST(TDataCommClassPut, CommandAckIsLenientBlockAcksAreStrict)
{
    const std::tuple<std::string, std::size_t, int, std::size_t> cases[] = {
        // acks (the command's, then one per block), blocks, result, blocks sent
        {"*\rC\rC\r*\r", 3, 0, 3}, {"C\r*\r", 1, 0, 1}, // the command's ack needs a CR second
        {"*Z*\r", 1, 0, 1},                             // or a '*' first
        {"ZZ", 1, -2, 0},                               // no block after a refused command
        {"*\r*\r", 2, -2, 1},                           // the last-block ack too early
        {"*\rC\rC\r", 2, -2, 2},                        // an intermediate ack on the last block
        {"*\rC\n", 2, -2, 1},
    };
    for (const auto &[acks, blocks, result, blocksSent] : cases) {
        const std::string data = pattern(blocks);
        EngineLink link(acks);
        EXPECT_EQ(link.engine.putData(bytes("PTSP\r"), 5, bytes(data), blocks), result) << acks;
        EXPECT_EQ(link.fake.script->written, "PTSP\r" + data.substr(0, blocksSent * 264)) << acks;
        EXPECT_EQ(link.module.isOpen(),
                  result ? TgenericCommmunicationsModule::Idle : TgenericCommmunicationsModule::Connected)
            << acks;
        if (blocks == 3) {
            EXPECT_EQ(link.progress.positions, (std::vector<int>{30, 63, 76, 90}));
        }
    }
    const std::string data = pattern(3);
    EngineLink link("*\rC\rC\r*\r");
    link.progress.cancelAtPosition = 63;
    EXPECT_THROW(link.engine.putData(bytes("PTSP\r"), 5, bytes(data), 3), ToperationCancelledException);
    EXPECT_EQ(link.fake.script->written, "PTSP\r" + data.substr(0, 264));
}
