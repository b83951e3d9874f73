// The real kt930sim on its own loopback address and pseudo-terminal, driven by a raw client. Its memory starts as
// a known data set laid out by hand from the documented block layouts (the demo Data files: the command-line tests).
#include "../e2e/KnownDataSet.h"
#include "LoopbackAddress.h"
#include "TempDir.h"
#include "TrawClient.h"
#include "TsimProcess.h"
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>

namespace fs = std::filesystem;

namespace {
constexpr std::size_t Block = 264;
const std::string Identification = std::string("KT930 Plus") + std::string(22, '\0') + "SIM-000001" +
                                   std::string(6, '\0') + "1.00" + std::string(212, '\0');

// The answers to a put: the command's, then "C\r" for each of `intermediate` blocks, then "*\r" unless left out.
std::string answers(std::size_t intermediate, bool last = true)
{
    std::string out = "*\r";
    for (std::size_t i = 0; i < intermediate; ++i)
        out += "C\r";
    return last ? out + "*\r" : out;
}

// Sends a put command and its blocks one at a time, each after the answer to the one before; returns the answers.
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
    TrawClient connect() { return TrawClient::connectTcp(address(), 60601); }
    void start(std::vector<std::string> extra = {})
    {
        extra.insert(extra.end(), {"--listen", address() + ":60601", "--memory", memoryFile.string(), "--appdir",
                                   KT930_TEST_APPDIR});
        sim.emplace(extra);
        ASSERT_TRUE(sim->waitForLog("ready")) << sim->log();
    }
    // Sends each command in turn and receives its answer of the given size; returns them all.
    static std::string ask(TrawClient &client, std::initializer_list<std::pair<const char *, std::size_t>> commands)
    {
        std::string answers;
        for (const auto &[command, bytes] : commands) {
            client.send(command + std::string("\r"));
            answers += client.receive(bytes);
        }
        return answers;
    }

    TempDir temp;
    const KnownImages memory = KnownDataSet::images(3), other = KnownDataSet::images(5);
    const fs::path memoryFile = temp.write("memory.bin", memory.memoryFile());
    std::optional<TsimProcess> sim;
};
} // namespace

TEST_F(SimulatorTest, AnswersWellFormedHandshakeAndGetsWithItsMemory)
{
    ASSERT_NO_FATAL_FAILURE(start());
    TrawClient client = connect();
    // Only four letters and a carriage return make a command: a line feed in front makes "\nGESI\r" six bytes.
    client.send("XXXX\r\nGESI\r");
    EXPECT_TRUE(sim->waitForLog("ignored a malformed command of 6 bytes"));
    EXPECT_EQ(client.pending(), "");
    EXPECT_EQ(ask(client, {{"GESI", Block}, {"GUIN", 174 * Block}, {"GASQ", 27 * Block}, {"GTSP", 500 * Block}}),
              Identification + memory.checkitems + memory.autosequences + memory.checklists);
    EXPECT_EQ(client.pending(), "");
    EXPECT_EQ(TempDir::read(memoryFile), memory.memoryFile()); // gets change nothing
    EXPECT_EQ(sim->stop(), 0);
}

// An interrupted put is dropped; a whole one is stored in the memory file, which every start reads.
TEST_F(SimulatorTest, PutIsAcknowledgedAndStoredAnInterruptedOneIsDropped)
{
    const std::string upload = other.checkitems;
    ASSERT_NO_FATAL_FAILURE(start());
    {
        TrawClient client = connect();
        ASSERT_EQ(put(client, "PTSP", other.checklists.substr(0, 10 * Block)), answers(10, false));
    }
    ASSERT_TRUE(sim->waitForLog("put dropped"));
    EXPECT_EQ(TempDir::read(memoryFile), memory.memoryFile());
    {
        TrawClient client = connect();
        EXPECT_EQ(put(client, "PUIN", upload), answers(173));
        EXPECT_EQ(ask(client, {{"GUIN", 174 * Block}}), upload);
    }
    ASSERT_TRUE(sim->waitForLog("PUIN stored 174 blocks"));
    EXPECT_EQ(TempDir::read(memoryFile), upload + memory.autosequences + memory.checklists);
}

// After a stop or a short block the next command is answered at once; a put closed part way keeps the memory.
TEST_F(SimulatorTest, FaultsStopShortenOrCloseTheStream)
{
    ASSERT_NO_FATAL_FAILURE(start({"--fault", "stop-after-block=2@GUIN", "--fault", "short-block=1@GASQ", "--fault",
                                   "close-at-block=5@GTSP", "--fault", "close-at-block=3@PUIN"}));
    TrawClient client = connect();
    EXPECT_EQ(
        ask(client,
            {{"GUIN", 3 * Block}, {"GESI", Block}, {"GASQ", Block + Block / 2}, {"GESI", Block}, {"GTSP", 5 * Block}}),
        memory.checkitems.substr(0, 3 * Block) + Identification + memory.autosequences.substr(0, Block + Block / 2) +
            Identification + memory.checklists.substr(0, 5 * Block));
    EXPECT_TRUE(client.waitClosed());
    EXPECT_EQ(client.pending(), "");
    TrawClient putter = connect();
    ASSERT_EQ(put(putter, "PUIN", other.checkitems.substr(0, 3 * Block)), answers(3, false));
    EXPECT_TRUE(putter.waitClosed());
    EXPECT_EQ(TempDir::read(memoryFile), memory.memoryFile());
}

// The last-block answer on an intermediate block, then the other way round; silence is per connection.
TEST_F(SimulatorTest, PutFaultsAcknowledgeWronglyOrNotAtAllAndSilenceIsPerConnection)
{
    ASSERT_NO_FATAL_FAILURE(start({"--fault", "bad-ack-block=1@PASQ", "--fault", "bad-ack-block=173@PUIN", "--fault",
                                   "no-ack-block=0@PTSP", "--fault", "silent-after=GESI"}));
    {
        TrawClient client = connect();
        EXPECT_EQ(put(client, "PASQ", other.autosequences.substr(0, 2 * Block)), "*\rC\r*\r");
        EXPECT_EQ(put(client, "PUIN", other.checkitems), answers(174, false));
        ASSERT_EQ(ask(client, {{"PTSP", 2}}), "*\r");
        client.send(other.checklists.substr(0, Block));
        ASSERT_TRUE(sim->waitForLog("block 0 not acknowledged"));
        EXPECT_EQ(client.pending(), "");
        EXPECT_EQ(TempDir::read(memoryFile), memory.memoryFile());
    }
    for (int connection = 0; connection < 2; ++connection) {
        TrawClient silenced = connect();
        EXPECT_EQ(ask(silenced, {{"GESI", Block}}), Identification);
        silenced.send("GUIN\r");
        ASSERT_TRUE(sim->waitForLog("silent, ignoring GUIN"));
        EXPECT_EQ(silenced.pending(), "");
    }
}

// A second opening of the terminal is served the same way; the link goes on stop.
TEST_F(SimulatorTest, ServesAPseudoTerminalAndRemovesItsLinkOnStop)
{
    const fs::path link = temp / "ttyKT930";
    TsimProcess sim({"--pty", link.string(), "--appdir", KT930_TEST_APPDIR});
    ASSERT_TRUE(sim.waitForLog("ready")) << sim.log();
    ASSERT_TRUE(fs::is_symlink(link));
    {
        TrawClient terminal = TrawClient::openPty(link.string());
        EXPECT_EQ(put(terminal, "PASQ", other.autosequences), answers(26));
    }
    TrawClient again = TrawClient::openPty(link.string());
    EXPECT_EQ(ask(again, {{"GASQ", 27 * Block}}), other.autosequences);
    EXPECT_EQ(sim.stop(), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

// A stale link of its kind (left by a killed simulator) is replaced; someone else's link, file or folder stays.
TEST_F(SimulatorTest, PseudoTerminalLinkReplacesOnlyAStaleLinkOfItsKindAndLeavesOthersAlone)
{
    const fs::path link = temp / "ttyKT930";
    fs::create_symlink("/dev/pts/999", link);
    {
        TsimProcess sim({"--pty", link.string(), "--appdir", KT930_TEST_APPDIR});
        ASSERT_TRUE(sim.waitForLog("ready")) << sim.log();
        EXPECT_NE(fs::read_symlink(link), "/dev/pts/999");
        fs::remove(link); // someone else's link takes the place meanwhile
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
        EXPECT_TRUE(sim.log().ends_with("\nkt930sim: refusing to replace " + (temp / name).string() +
                                        ": it exists and is not a link to a pseudo-terminal\n"))
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
    EXPECT_EQ(ask(client, {{"GESI", Block}}), Identification);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(260));
    ASSERT_EQ(ask(client, {{"PASQ", 2}}), "*\r");
    begin = std::chrono::steady_clock::now();
    client.send(other.autosequences.substr(0, Block));
    EXPECT_EQ(client.receive(2), "C\r");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(260));
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
