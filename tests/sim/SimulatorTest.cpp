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
#include <optional>

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

std::string repeated(const std::string &text, std::size_t times)
{
    std::string out;
    for (std::size_t i = 0; i < times; ++i)
        out += text;
    return out;
}

// A put's answers as they should come: an intermediate ack for every block but the last.
std::string acks(std::size_t blocks)
{
    return repeated("C\r", blocks - 1) + "*\r";
}

// Sends a put command and its blocks one at a time, each after the answer to the
// one before; returns every answer, the command's first. A missing answer ends it.
std::string put(TrawClient &client, const std::string &command, const std::string &blocks)
{
    client.send(command + "\r");
    std::string answers = client.receive(2);
    for (std::size_t at = 0; at < blocks.size() && answers.size() == 2 * (at / Block + 1); at += Block) {
        client.send(blocks.substr(at, Block));
        answers += client.receive(2);
    }
    return answers;
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
    // The simulator with these extra arguments, taking connections.
    void start(std::vector<std::string> extra = {})
    {
        sim.emplace(tcpArguments(std::move(extra)));
        ASSERT_TRUE(sim->waitForLog("ready")) << sim->log();
    }

    TempDir temp;
    const KnownImages memory = KnownDataSet::images(3);
    const fs::path memoryFile = temp.write("memory.bin", memory.memoryFile());
    std::optional<TsimProcess> sim;
};
}

TEST_F(SimulatorTest, AnswersWellFormedHandshakeAndGetsWithItsMemory)
{
    ASSERT_NO_FATAL_FAILURE(start());
    TrawClient client = connect();
    ASSERT_TRUE(client.isOpen());
    // Only four letters and a carriage return make a command: a line feed in front
    // makes "\nGESI\r" six bytes.
    client.send("XXXX\r\nGESI\r");
    EXPECT_TRUE(sim->waitForLog("unknown command ignored"));
    EXPECT_TRUE(sim->waitForLog("ignored a malformed command of 6 bytes"));
    EXPECT_EQ(client.pending(), "");

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
    EXPECT_EQ(sim->stop(), 0);
    EXPECT_NE(sim->log().find("GASQ sent 27 blocks"), std::string::npos);
}

TEST_F(SimulatorTest, PutIsAcknowledgedStoredAndSurvivesARestartAnInterruptedOneIsDropped)
{
    const std::string upload = pattern(174 * Block, 3);
    ASSERT_NO_FATAL_FAILURE(start());
    {
        TrawClient client = connect();
        ASSERT_EQ(put(client, "PTSP", pattern(10 * Block, 0)), "*\r" + repeated("C\r", 10));
    }
    ASSERT_TRUE(sim->waitForLog("put dropped"));
    EXPECT_EQ(TempDir::read(memoryFile), memory.memoryFile());
    {
        TrawClient client = connect();
        EXPECT_EQ(put(client, "PUIN", upload), "*\r" + acks(174));
        client.send("GUIN\r");
        EXPECT_EQ(client.receive(174 * Block), upload);
    }
    ASSERT_TRUE(sim->waitForLog("PUIN stored 174 blocks"));
    EXPECT_EQ(TempDir::read(memoryFile), upload + memory.autosequences + memory.checklists);
    EXPECT_EQ(sim->stop(), 0);
    ASSERT_NO_FATAL_FAILURE(start());
    TrawClient client = connect();
    client.send("GUIN\r");
    EXPECT_EQ(client.receive(174 * Block), upload);
}

TEST_F(SimulatorTest, FaultsStopShortenOrCloseTheStream)
{
    ASSERT_NO_FATAL_FAILURE(start({"--fault", "stop-after-block=2@GUIN", "--fault", "short-block=1@GASQ", "--fault",
                                   "close-at-block=5@GTSP", "--fault", "close-at-block=3@PUIN"}));
    const std::string before = TempDir::read(memoryFile);
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

    // A put closed part way keeps the memory.
    TrawClient putter = connect();
    ASSERT_EQ(put(putter, "PUIN", pattern(3 * Block, 0)), "*\r" + repeated("C\r", 3));
    EXPECT_TRUE(putter.waitClosed());
    EXPECT_EQ(TempDir::read(memoryFile), before);

}

TEST_F(SimulatorTest, PutFaultsAcknowledgeWronglyOrNotAtAllAndSilenceIsPerConnection)
{
    ASSERT_NO_FATAL_FAILURE(start({"--fault", "bad-ack-block=1@PASQ", "--fault", "bad-ack-block=173@PUIN", "--fault",
                                   "no-ack-block=0@PTSP", "--fault", "silent-after=GESI"}));
    const std::string before = TempDir::read(memoryFile);
    TrawClient client = connect();
    // The last-block answer on an intermediate block, then the other way round.
    EXPECT_EQ(put(client, "PASQ", pattern(2 * Block, 1)), "*\rC\r*\r");
    EXPECT_EQ(put(client, "PUIN", pattern(174 * Block, 9)), "*\r" + repeated("C\r", 174));

    client.send("PTSP\r");
    ASSERT_EQ(client.receive(2), "*\r");
    client.send(pattern(Block, 4));
    ASSERT_TRUE(sim->waitForLog("block 0 not acknowledged"));
    EXPECT_EQ(client.pending(), "");
    EXPECT_EQ(TempDir::read(memoryFile), before);

    { const TrawClient closed = std::move(client); }
    // Silent after a command: for that connection only.
    for (int connection = 0; connection < 2; ++connection) {
        TrawClient silenced = connect();
        silenced.send("GESI\r");
        EXPECT_EQ(silenced.receive(Block), identification());
        silenced.send("GUIN\r");
        ASSERT_TRUE(sim->waitForLog("silent, ignoring GUIN"));
        EXPECT_EQ(silenced.pending(), "");
    }
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
        EXPECT_EQ(put(terminal, "PASQ", pattern(27 * Block, 5)), "*\r" + acks(27));
    }
    // A second opening of the terminal is served the same way.
    TrawClient again = TrawClient::openPty(link.string());
    again.send("GASQ\r");
    EXPECT_EQ(again.receive(27 * Block), pattern(27 * Block, 5));
    EXPECT_EQ(sim.stop(), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST_F(SimulatorTest, PseudoTerminalLinkReplacesOnlyAStaleLinkOfItsKindAndLeavesOthersAlone)
{
    const fs::path link = temp / "ttyKT930";
    fs::create_symlink("/dev/pts/999", link); // left behind by a simulator that was killed
    {
        TsimProcess sim({"--pty", link.string(), "--appdir", KT930_TEST_APPDIR});
        ASSERT_TRUE(sim.waitForLog("ready")) << sim.log();
        const fs::path slave = fs::read_symlink(link);
        EXPECT_NE(slave, "/dev/pts/999");
        // Someone else's link took the place meanwhile: it stays.
        fs::remove(link);
        fs::create_symlink("/dev/pts/998", link);
        EXPECT_EQ(sim.stop(), 0);
        EXPECT_EQ(fs::read_symlink(link), "/dev/pts/998");
    }
    fs::remove(link);
    temp.write("ttyKT930", "a user's file");
    fs::create_directories(temp / "folder");
    fs::create_symlink(temp / "folder", temp / "toFolder");
    for (const char *name : {"ttyKT930", "folder", "toFolder"}) {
        TsimProcess sim({"--pty", (temp / name).string(), "--appdir", KT930_TEST_APPDIR});
        EXPECT_EQ(sim.waitExit(), 1);
        EXPECT_TRUE(sim.log().ends_with("\nkt930sim: refusing to replace " + (temp / name).string()
                                        + ": it exists and is not a link to a pseudo-terminal\n"))
            << sim.log();
    }
    EXPECT_EQ(TempDir::read(temp / "ttyKT930"), "a user's file");
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(temp / "folder")));
    EXPECT_EQ(fs::read_symlink(temp / "toFolder"), temp / "folder");
}

// 264 bytes at 960 bytes a second take at least 275 ms, both ways.
TEST_F(SimulatorTest, BaudRatePacesTheOutputAndTheInput)
{
    ASSERT_NO_FATAL_FAILURE(start({"--baud", "9600"}));
    TrawClient client = connect();
    auto begin = std::chrono::steady_clock::now();
    client.send("GESI\r");
    EXPECT_EQ(client.receive(Block), identification());
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(260));

    client.send("PASQ\r");
    ASSERT_EQ(client.receive(2), "*\r");
    begin = std::chrono::steady_clock::now();
    client.send(pattern(Block, 1));
    EXPECT_EQ(client.receive(2), "C\r");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(260));
}

TEST_F(SimulatorTest, WrongStoreFaultAcknowledgesAndStoresTheBlockChanged)
{
    ASSERT_NO_FATAL_FAILURE(start({"--fault", "wrong-store=2@PASQ"}));
    TrawClient client = connect();
    const std::string sent = pattern(27 * Block, 2);
    EXPECT_EQ(put(client, "PASQ", sent), "*\r" + acks(27));
    ASSERT_TRUE(sim->waitForLog("PASQ stored 27 blocks"));

    std::string stored = sent;
    stored[2 * Block] = static_cast<char>(stored[2 * Block] ^ 0xFF);
    client.send("GASQ\r");
    EXPECT_EQ(client.receive(27 * Block), stored);
    EXPECT_EQ(TempDir::read(memoryFile), memory.checkitems + stored + memory.checklists);
}

TEST_F(SimulatorTest, RejectsBadCommandLinesAndBadMemoryFiles)
{
    for (const auto &[arguments, why] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"--fault", "slow-block=3"}, "unknown fault \"slow-block=3\""},
             {{"--fault", "stop-after-block=3@GXXX"}, "names no known command"},
             {{"--bogus"}, "kt930sim: unknown option --bogus"},
             {{"--memory", "--listen", "127.0.0.1:60601"}, "kt930sim: --memory needs a value"},
             {{"stray"}, "kt930sim: unexpected argument stray"}}) {
        TsimProcess refused(arguments);
        EXPECT_TRUE(refused.waitForLog(why)) << why;
        EXPECT_EQ(refused.waitExit(), 2) << why;
    }

    temp.write("short.bin", "abc");
    TsimProcess shortMemory({"--memory", (temp / "short.bin").string(), "--listen", address() + ":60601"});
    EXPECT_TRUE(shortMemory.waitForLog("holds 3 bytes, not 185064"));
    EXPECT_EQ(shortMemory.waitExit(), 1);
}
