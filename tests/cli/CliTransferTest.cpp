// kt930ctl download / upload / sync against the real simulator (its memory: the demo set); the PC keeps the op codes.
#include "CliFixture.h"
#include "LoopbackAddress.h"
#include "SaveUnderFaults.h"
#include "TsimProcess.h"
namespace fs = std::filesystem;

namespace {
const fs::path DemoData = fs::path(KT930_TEST_APPDIR) / "Data";

struct CliTransferTest : CliFixture {
    CliTransferTest()
    {
        for (const auto &entry : fs::directory_iterator(temp / "app/Data"))
            if (entry.path().extension() != ".in")
                fs::remove_all(entry.path());
    }
    static std::string address(int test) { return LoopbackAddress(test, 32).text(); }
    void givePcTheDemoSet()
    {
        fs::copy(DemoData, temp / "app/Data", fs::copy_options::overwrite_existing | fs::copy_options::recursive);
    }
    std::unique_ptr<TsimProcess> startSimulator(const std::string &at, std::vector<std::string> extra = {})
    {
        extra.insert(extra.end(), {"--listen", at + ":60601", "--appdir", KT930_TEST_APPDIR, "--memory",
                                   (temp / "memory.bin").string()});
        auto sim = std::make_unique<TsimProcess>(extra);
        EXPECT_TRUE(sim->waitForLog("ready")) << sim->log();
        return sim;
    }
    std::string memory(std::size_t size) const { return TempDir::read(temp / "memory.bin").substr(0, size); }

    const std::string pc = (temp / "app/Data").string();
};

// Nobody listens at this address: the connect fails, then times out.
TEST_F(CliTransferTest, AFailedDownloadChangesNoFileAndFails)
{
    const std::string before = TempDir::readDataFiles(pc);
    EXPECT_EQ(outcome(ctl({"download", "--ethernet", address(4)})),
              std::tuple(1, "",
                         "Initializing\nInitiating Handshake\nEthernet Connection Error\nAn error occurred while "
                         "attempting to connect."
                         "\nOperation Canceled.\nError\nTimeout Error.\nOperation Canceled.\n"));
    EXPECT_EQ(TempDir::readDataFiles(pc), before);
}

// Block 3 of the checkitems starts at byte 792, inside checkitem 19 (44 bytes each); the read-back goes to memory only.
// (A verify that finds nothing runs through the USB stack test.)
TEST_F(CliTransferTest, UploadVerifyReadsBackAndNamesTheFirstWronglyStoredPlace)
{
    givePcTheDemoSet();
    const std::string before = TempDir::readDataFiles(pc), at = address(6);
    auto faulty = startSimulator(at, {"--fault", "wrong-store=3@PUIN", "--fault", "wrong-store=20@PASQ"});
    ProgramRun result = ctl({"upload", "--verify", "--ethernet", at});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_TRUE(result.err.ends_with(
        "Completed!\nkt930ctl upload --verify: the analyzer holds something else than was sent, first at "
        "checkitem 19 (byte 792 of the checkitem area)\n"))
        << result.err;
    EXPECT_EQ(TempDir::readDataFiles(pc), before);
}

// Defaults never overwrite the analyzer's content, and unknown op codes go only when forced; a refused upload
// connects to nothing.
TEST_F(CliTransferTest, UploadRefusesUnknownOpCodesUnlessForcedAndADataSetThatDidNotLoadAlways)
{
    givePcTheDemoSet();
    std::string table = TempDir::read(DemoData / "mit.dat");
    table[1 * 44 + 1] = 'Z';
    table[19 * 44 + 1] = '0';
    temp.write("app/Data/mit.dat", table);
    const std::string at = address(9);
    EXPECT_EQ(outcome(ctl({"upload", "--ethernet", at})),
              std::tuple(1, "",
                         "kt930ctl upload: not sending, checkitems with an op code that no definition file knows: slot "
                         "2 (Z), slot 20 (0) "
                         "(--force sends them all the same)\n"));
    auto sim = startSimulator(at);
    ASSERT_EQ(ctl({"upload", "--force", "--ethernet", at}).exitCode, 0);
    fs::remove(temp / "app/Data/usertester3.asq");
    const std::string logBefore = sim->log();
    ProgramRun refused = ctl({"upload", "--force", "--ethernet", at});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(
        refused.err.find("User Tester Sequences Error\nWarning!! One or more corrupt User Tester Sequences detected.\n"
                         "Please restore the data from the KT930.\n"),
        std::string::npos)
        << refused.err;
    EXPECT_EQ(sim->log(), logBefore);
    sim->stop();
    EXPECT_EQ(memory(45936), table);
}

// What replaces the data set is killed at each of its renames in turn.
TEST_F(CliTransferTest, DownloadSyncAndImportKilledAtAnyRenameLeaveTheOldOrTheNewSet)
{
    const std::string at = address(7);
    auto sim = startSimulator(at);
    temp.write("new.csv", "A,P,ADDED\n");
    const SaveUnderFaults::Files before = SaveUnderFaults::savedFiles(1);
    const std::pair<std::vector<std::string>, int> commands[] = {// and the fewest kills
                                                                 {{"download", "--ethernet", at}, 8 + 1},
                                                                 {{"sync", "--ethernet", at}, 1},
                                                                 {{"import-csv", (temp / "new.csv").string()}, 1}};
    for (const auto &[arguments, minimumKills] : commands) {
        std::vector<std::string> line{(fs::path(KT930_TEST_APPDIR) / "kt930ctl").string()};
        line.insert(line.end(), arguments.begin(), arguments.end());
        line.insert(line.end(), {"--appdir", appDir()});
        const auto figures = SaveUnderFaults::killAtEveryRename(line, temp / "app", before);
        EXPECT_GE(figures.kills, minimumKills) << arguments[0];
        EXPECT_EQ(std::pair(figures.mixed, figures.leftovers), std::pair(0, 0)) << arguments[0];
    }
}
} // namespace
