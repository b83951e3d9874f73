// The real kt930sim on its own loopback address and pseudo-terminal, driven by a
// raw client. Its memory starts as a known data set laid out by hand from the
// documented block layouts. (Starting from the demo Data files is checked end to
// end by the command-line transfer tests.)
#include "../e2e/KnownDataSet.h"
#include "LoopbackAddress.h"
#include "TempDir.h"
#include "TrawClient.h"
#include "TsimProcess.h"
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {
constexpr std::size_t Block = 264;
std::string identification()
{
    std::string block(Block, '\0');
    block.replace(0, 10, "KT930 Plus");
    block.replace(32, 10, "SIM-000001");
    block.replace(48, 4, "1.00");
    return block;
}

std::string pattern(std::size_t size, int seed)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i * 7 + static_cast<std::size_t>(seed)) % 251);
    return bytes;
}

std::string acks(std::size_t blocks)
{
    std::string expected;
    for (std::size_t i = 1; i < blocks; ++i)
        expected += "C\r";
    return expected + "*\r";
}

class SimulatorTest : public ::testing::Test {
protected:
    std::string address() { return LoopbackAddress(1, 64).text(); }
    std::vector<std::string> tcpArguments(std::vector<std::string> extra = {})
    {
        std::vector<std::string> arguments{"--listen", address() + ":60601", "--memory", memoryFile.string(),
                                           "--appdir", KT930_TEST_APPDIR};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        return arguments;
    }
    TrawClient connect() { return TrawClient::connectTcp(address(), 60601); }

    TempDir temp;
    const KnownImages memory = KnownDataSet::images(3);
    const fs::path memoryFile = temp.write("memory.bin", memory.memoryFile());
};
}

TEST_F(SimulatorTest, AnswersHandshakeAndGetsWithItsMemory)
{
    TsimProcess sim(tcpArguments());
    ASSERT_TRUE(sim.waitForLog("ready")) << sim.log();
    TrawClient client = connect();
    ASSERT_TRUE(client.isOpen());

    client.send("GESI\r");
    EXPECT_EQ(client.receive(Block), identification());
    client.send("GUIN\r");
    EXPECT_EQ(client.receive(174 * Block), memory.checkitems);
    client.send("GASQ\r");
    EXPECT_EQ(client.receive(27 * Block), memory.autosequences);
    client.send("GTSP\r");
    EXPECT_EQ(client.receive(500 * Block), memory.checklists);
    EXPECT_EQ(client.pending(), "");

    EXPECT_EQ(TempDir::read(memoryFile), memory.memoryFile()); // gets change nothing
    EXPECT_EQ(sim.stop(), 0);
    EXPECT_NE(sim.log().find("GASQ sent 27 blocks"), std::string::npos);
}

TEST_F(SimulatorTest, ServesOnlyFourLettersAndCarriageReturn)
{
    TsimProcess sim(tcpArguments());
    ASSERT_TRUE(sim.waitForLog("ready"));
    TrawClient client = connect();
    // A line feed in front makes "\nGESI\r" six bytes: not a command.
    client.send("XXXX\r\nGESI\r");
    EXPECT_TRUE(sim.waitForLog("unknown command ignored"));
    EXPECT_TRUE(sim.waitForLog("ignored a malformed command of 6 bytes"));
    EXPECT_EQ(client.pending(), "");
    client.send("GESI\r");
    EXPECT_EQ(client.receive(Block), identification());
}

TEST_F(SimulatorTest, PutIsAcknowledgedStoredAndSurvivesARestart)
{
    const std::string upload = pattern(174 * Block, 3);
    {
        TsimProcess sim(tcpArguments());
        ASSERT_TRUE(sim.waitForLog("ready"));
        TrawClient client = connect();
        client.send("PUIN\r");
        ASSERT_EQ(client.receive(2), "*\r");
        std::string received;
        for (std::size_t i = 0; i < 174; ++i) {
            client.send(upload.substr(i * Block, Block));
            received += client.receive(2);
        }
        EXPECT_EQ(received, acks(174));
        client.send("GUIN\r");
        EXPECT_EQ(client.receive(174 * Block), upload);
        ASSERT_TRUE(sim.waitForLog("PUIN stored 174 blocks"));
        EXPECT_EQ(TempDir::read(memoryFile), upload + memory.autosequences + memory.checklists);
        EXPECT_EQ(sim.stop(), 0);
    }
    TsimProcess restarted(tcpArguments());
    ASSERT_TRUE(restarted.waitForLog("ready"));
    TrawClient client = connect();
    client.send("GUIN\r");
    EXPECT_EQ(client.receive(174 * Block), upload);
}

TEST_F(SimulatorTest, InterruptedPutLeavesTheMemoryIntactAndANewClientIsServed)
{
    TsimProcess sim(tcpArguments());
    ASSERT_TRUE(sim.waitForLog("ready"));
    const std::string before = TempDir::read(memoryFile);
    {
        TrawClient client = connect();
        client.send("PTSP\r");
        ASSERT_EQ(client.receive(2), "*\r");
        for (int i = 0; i < 10; ++i) {
            client.send(pattern(Block, i));
            ASSERT_EQ(client.receive(2), "C\r");
        }
    }
    ASSERT_TRUE(sim.waitForLog("put dropped"));
    EXPECT_EQ(TempDir::read(memoryFile), before);

    TrawClient again = connect();
    again.send("GTSP\r");
    EXPECT_EQ(again.receive(500 * Block), memory.checklists);
}

TEST_F(SimulatorTest, GetFaultsStopShortenOrCloseTheStream)
{
    TsimProcess sim(tcpArguments({"--fault", "stop-after-block=2@GUIN", "--fault", "short-block=1@GASQ",
                                  "--fault", "close-at-block=5@GTSP"}));
    ASSERT_TRUE(sim.waitForLog("ready"));
    TrawClient client = connect();

    // After a stop or a short block the next command is answered at once.
    client.send("GUIN\r");
    EXPECT_EQ(client.receive(3 * Block), memory.checkitems.substr(0, 3 * Block));
    client.send("GESI\r");
    EXPECT_EQ(client.receive(Block), identification());

    client.send("GASQ\r");
    EXPECT_EQ(client.receive(Block + Block / 2), memory.autosequences.substr(0, Block + Block / 2));
    client.send("GESI\r");
    EXPECT_EQ(client.receive(Block), identification());

    client.send("GTSP\r");
    EXPECT_EQ(client.receive(5 * Block), memory.checklists.substr(0, 5 * Block));
    EXPECT_TRUE(client.waitClosed());
    EXPECT_EQ(client.pending(), "");
}

TEST_F(SimulatorTest, PutFaultsAcknowledgeWronglyOrNotAtAll)
{
    TsimProcess sim(tcpArguments({"--fault", "bad-ack-block=1@PASQ", "--fault", "bad-ack-block=173@PUIN",
                                  "--fault", "no-ack-block=0@PTSP"}));
    ASSERT_TRUE(sim.waitForLog("ready"));
    const std::string before = TempDir::read(memoryFile);
    TrawClient client = connect();

    client.send("PASQ\r");
    ASSERT_EQ(client.receive(2), "*\r");
    client.send(pattern(Block, 1));
    EXPECT_EQ(client.receive(2), "C\r");
    client.send(pattern(Block, 2));
    EXPECT_EQ(client.receive(2), "*\r"); // the last-block answer on an intermediate block

    client.send("PUIN\r");
    ASSERT_EQ(client.receive(2), "*\r");
    std::string received;
    for (std::size_t i = 0; i < 174; ++i) {
        client.send(pattern(Block, 9));
        received += client.receive(2);
    }
    std::string expected;
    for (std::size_t i = 0; i < 174; ++i)
        expected += "C\r"; // the last block answered as an intermediate one
    EXPECT_EQ(received, expected);

    client.send("PTSP\r");
    ASSERT_EQ(client.receive(2), "*\r");
    client.send(pattern(Block, 4));
    ASSERT_TRUE(sim.waitForLog("block 0 not acknowledged"));
    EXPECT_EQ(client.pending(), "");
    EXPECT_EQ(TempDir::read(memoryFile), before);
}

TEST_F(SimulatorTest, PutCloseFaultDropsTheConnectionAndKeepsTheMemory)
{
    TsimProcess sim(tcpArguments({"--fault", "close-at-block=3@PUIN"}));
    ASSERT_TRUE(sim.waitForLog("ready"));
    const std::string before = TempDir::read(memoryFile);
    TrawClient client = connect();
    client.send("PUIN\r");
    ASSERT_EQ(client.receive(2), "*\r");
    for (int i = 0; i < 3; ++i) {
        client.send(pattern(Block, i));
        ASSERT_EQ(client.receive(2), "C\r");
    }
    EXPECT_TRUE(client.waitClosed());
    EXPECT_EQ(TempDir::read(memoryFile), before);
}

TEST_F(SimulatorTest, SilentAfterACommandLastsForThatConnectionOnly)
{
    TsimProcess sim(tcpArguments({"--fault", "silent-after=GESI"}));
    ASSERT_TRUE(sim.waitForLog("ready"));
    {
        TrawClient client = connect();
        client.send("GESI\r");
        EXPECT_EQ(client.receive(Block), identification());
        client.send("GUIN\r");
        ASSERT_TRUE(sim.waitForLog("silent, ignoring GUIN"));
        EXPECT_EQ(client.pending(), "");
    }
    ASSERT_TRUE(sim.waitForLog("disconnected"));
    TrawClient next = connect();
    next.send("GESI\r");
    EXPECT_EQ(next.receive(Block), identification());
}

TEST_F(SimulatorTest, ServesAPseudoTerminalAndRemovesItsLinkOnStop)
{
    const fs::path link = temp / "ttyKT930";
    TsimProcess sim({"--pty", link.string(), "--appdir", KT930_TEST_APPDIR});
    ASSERT_TRUE(sim.waitForLog("ready")) << sim.log();
    ASSERT_TRUE(fs::is_symlink(link));
    {
        TrawClient terminal = TrawClient::openPty(link.string());
        ASSERT_TRUE(terminal.isOpen());
        terminal.send("GESI\r");
        EXPECT_EQ(terminal.receive(Block), identification());
        terminal.send("PASQ\r");
        EXPECT_EQ(terminal.receive(2), "*\r");
        std::string received;
        for (int i = 0; i < 27; ++i) {
            terminal.send(pattern(Block, 5));
            received += terminal.receive(2);
        }
        EXPECT_EQ(received, acks(27));
    }
    // A second opening of the terminal is served the same way.
    TrawClient again = TrawClient::openPty(link.string());
    again.send("GASQ\r");
    std::string expected;
    for (int i = 0; i < 27; ++i)
        expected += pattern(Block, 5);
    EXPECT_EQ(again.receive(27 * Block), expected);
    EXPECT_EQ(sim.stop(), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST_F(SimulatorTest, BaudRatePacesTheOutput)
{
    TsimProcess sim(tcpArguments({"--baud", "9600"}));
    ASSERT_TRUE(sim.waitForLog("ready"));
    TrawClient client = connect();
    auto start = std::chrono::steady_clock::now();
    client.send("GESI\r");
    EXPECT_EQ(client.receive(Block), identification());
    // 264 bytes at 960 bytes a second cannot arrive in less than 275 ms.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(260));
}

TEST_F(SimulatorTest, BaudRatePacesTheInput)
{
    TsimProcess sim(tcpArguments({"--baud", "9600"}));
    ASSERT_TRUE(sim.waitForLog("ready"));
    TrawClient client = connect();
    client.send("PASQ\r");
    ASSERT_EQ(client.receive(2), "*\r");
    auto start = std::chrono::steady_clock::now();
    client.send(pattern(Block, 1));
    EXPECT_EQ(client.receive(2), "C\r");
    // The block is taken in no faster than 960 bytes a second: 275 ms.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(260));
}

TEST_F(SimulatorTest, WrongStoreFaultAcknowledgesAndStoresTheBlockChanged)
{
    TsimProcess sim(tcpArguments({"--fault", "wrong-store=2@PASQ"}));
    ASSERT_TRUE(sim.waitForLog("ready"));
    TrawClient client = connect();
    client.send("PASQ\r");
    ASSERT_EQ(client.receive(2), "*\r");
    std::string sent, received;
    for (int i = 0; i < 27; ++i) {
        sent += pattern(Block, i);
        client.send(pattern(Block, i));
        received += client.receive(2);
    }
    EXPECT_EQ(received, acks(27));
    ASSERT_TRUE(sim.waitForLog("PASQ stored 27 blocks"));

    std::string stored = sent;
    stored[2 * Block] = static_cast<char>(stored[2 * Block] ^ 0xFF);
    client.send("GASQ\r");
    EXPECT_EQ(client.receive(27 * Block), stored);
    EXPECT_EQ(TempDir::read(memoryFile), memory.checkitems + stored + memory.checklists);
}

TEST_F(SimulatorTest, RejectsBadCommandLinesAndBadMemoryFiles)
{
    TsimProcess badFault({"--fault", "slow-block=3"});
    EXPECT_TRUE(badFault.waitForLog("unknown fault \"slow-block=3\""));
    EXPECT_EQ(badFault.waitExit(), 2);

    TsimProcess badCommand({"--fault", "stop-after-block=3@GXXX"});
    EXPECT_TRUE(badCommand.waitForLog("names no known command"));
    EXPECT_EQ(badCommand.waitExit(), 2);

    temp.write("short.bin", "abc");
    TsimProcess shortMemory({"--memory", (temp / "short.bin").string(), "--listen", address() + ":60601"});
    EXPECT_TRUE(shortMemory.waitForLog("holds 3 bytes, not 185064"));
    EXPECT_EQ(shortMemory.waitExit(), 1);
}
