// kt930ctl download / upload / sync against the real simulator.
#include "TsimProcess.h"
#include "LoopbackAddress.h"
#include "ProgramRun.h"
#include "PtyPair.h"
#include "TempDir.h"
#include "SaveUnderFaults.h"
#include <filesystem>
#include <gtest/gtest.h>
namespace fs = std::filesystem;

namespace {
const char *const DataFiles[] = {"mit.dat", "inspection.asq", "usertester1.asq", "usertester2.asq",
                                 "usertester3.asq", "usertester4.asq", "usertester5.asq", "testProc.asq"};

class CliTransferTest : public ::testing::Test {
protected:
    CliTransferTest()
    {
        // The simulator's memory starts from the demo data set; the PC's folder has only the op codes.
        fs::create_directories(temp / "pc/Data");
        for (const auto &entry : fs::directory_iterator(demoData()))
            if (entry.path().extension() == ".in")
                fs::copy(entry.path(), temp / "pc/Data" / entry.path().filename());
    }

    static fs::path demoData() { return fs::path(KT930_TEST_APPDIR) / "Data"; }
    fs::path pcData(const std::string &name) const { return temp / "pc/Data" / name; }

    static std::string address(int test) { return LoopbackAddress(test, 32).text(); }

    std::unique_ptr<TsimProcess> startSimulator(const std::string &at, std::vector<std::string> extra = {})
    {
        std::vector<std::string> arguments{"--listen", at + ":60601", "--appdir", KT930_TEST_APPDIR,
                                           "--memory", (temp / "memory.bin").string()};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        auto sim = std::make_unique<TsimProcess>(arguments);
        EXPECT_TRUE(sim->waitForLog("ready")) << sim->log();
        return sim;
    }

    int ctl(std::vector<std::string> arguments)
    {
        arguments.push_back("--appdir");
        arguments.push_back((temp / "pc").string());
        ProgramRun result = ProgramRun::run("kt930ctl", std::move(arguments), temp.path());
        stdoutText = result.out;
        stderrText = result.err;
        return result.exitCode;
    }

    TempDir temp;
    std::string stdoutText, stderrText;
};

TEST_F(CliTransferTest, DownloadSavesTheAnalyzersDataSetByteForByteThenSyncAndUploadRunOverIt)
{
    const std::string at = address(1);
    auto sim = startSimulator(at);
    ASSERT_EQ(ctl({"download", "--ethernet", at}), 0) << stderrText;
    for (const char *name : DataFiles)
        EXPECT_EQ(TempDir::read(pcData(name)), TempDir::read(demoData() / name)) << name;
    EXPECT_EQ(stdoutText, "Downloaded the data set into " + (temp / "pc/Data").string() + "\n");
    // Not a terminal: one plain line per stage.
    EXPECT_EQ(stderrText, "Initializing\nInitiating Handshake\nGetting Checkitems\nGetting Autosequences\n"
                          "Getting Checklists\nCompleted!\n");

    ASSERT_EQ(ctl({"sync", "--ethernet", at}), 0) << stderrText;
    EXPECT_EQ(stdoutText, "Saved the analyzer's checkitem database as " + pcData("mit.dat").string() + "\n");
    ASSERT_EQ(ctl({"upload", "--ethernet", at}), 0) << stderrText;
    sim->stop();
    const std::string memory = TempDir::read(temp / "memory.bin");
    ASSERT_EQ(memory.size(), 45936u + 132000u + 7128u);
    // The checkitem image is mit.dat as it stands.
    EXPECT_EQ(memory.substr(0, 45936), TempDir::read(demoData() / "mit.dat"));
}

TEST_F(CliTransferTest, AFailedDownloadChangesNoFileAndFails)
{
    // Nobody listens at this address: the connect fails, then times out.
    ASSERT_EQ(ctl({"download", "--ethernet", address(4)}), 1);
    EXPECT_EQ(stderrText, "Initializing\nInitiating Handshake\n"
                          "Ethernet Connection Error\nAn error occurred while attempting to connect.\nOperation Canceled.\n"
                          "Error\nTimeout Error.\nOperation Canceled.\n");
    for (const char *name : DataFiles)
        EXPECT_FALSE(fs::exists(pcData(name))) << name;
}

TEST_F(CliTransferTest, UploadVerifyReadsBackAndNamesTheFirstWronglyStoredPlace)
{
    for (const char *name : DataFiles)
        fs::copy_file(demoData() / name, pcData(name));
    const std::string files = TempDir::read(pcData("mit.dat")) + TempDir::read(pcData("testProc.asq"));
    {
        const std::string at = address(5);
        auto sim = startSimulator(at);
        ASSERT_EQ(ctl({"upload", "--verify", "--ethernet", at}), 0) << stderrText;
        EXPECT_EQ(stdoutText, "Uploaded the data set of " + (temp / "pc/Data").string()
                      + "\nVerified: the analyzer's memory equals what was sent\n");
        EXPECT_TRUE(sim->waitForLog("GTSP sent 500 blocks"));
    }
    // Block 3 of the checkitems starts at byte 792, inside checkitem 19 (44 bytes each).
    const std::string at = address(6);
    auto faulty = startSimulator(at, {"--fault", "wrong-store=3@PUIN", "--fault", "wrong-store=20@PASQ"});
    EXPECT_EQ(ctl({"upload", "--verify", "--ethernet", at}), 3);
    const std::string expected = "Completed!\nkt930ctl upload --verify: the analyzer holds something else than was "
                                 "sent, first at checkitem 19 (byte 792 of the checkitem area)\n";
    ASSERT_GE(stderrText.size(), expected.size());
    EXPECT_EQ(stderrText.substr(stderrText.size() - expected.size()), expected);
    // The read-back went to memory only.
    EXPECT_EQ(TempDir::read(pcData("mit.dat")) + TempDir::read(pcData("testProc.asq")), files);
}

// Defaults never overwrite the analyzer's content, and unknown op codes go only when forced.
TEST_F(CliTransferTest, UploadRefusesUnknownOpCodesUnlessForcedAndADataSetThatDidNotLoadAlways)
{
    for (const char *name : DataFiles)
        fs::copy_file(demoData() / name, pcData(name));
    std::string table = TempDir::read(demoData() / "mit.dat");
    table[1 * 44 + 1] = 'Z';
    table[19 * 44 + 1] = '0';
    temp.write("pc/Data/mit.dat", table);
    const std::string at = address(9);
    // Refused before any connection is tried.
    EXPECT_EQ(ctl({"upload", "--ethernet", at}), 1);
    EXPECT_EQ(stderrText, "kt930ctl upload: not sending, checkitems with an op code that no definition file knows: "
                          "slot 2 (Z), slot 20 (0) (--force sends them all the same)\n");

    auto sim = startSimulator(at);
    ASSERT_EQ(ctl({"upload", "--force", "--ethernet", at}), 0) << stderrText;
    fs::remove(pcData("usertester3.asq"));
    const std::string logBefore = sim->log();
    EXPECT_EQ(ctl({"upload", "--force", "--ethernet", at}), 1);
    EXPECT_NE(stderrText.find("User Tester Sequences Error\nWarning!! One or more corrupt User Tester Sequences "
                              "detected.\nPlease restore the data from the KT930.\n"),
              std::string::npos)
        << stderrText;
    EXPECT_EQ(sim->log(), logBefore) << "connected for a refused upload";
    sim->stop();
    EXPECT_EQ(TempDir::read(temp / "memory.bin").substr(0, 45936), table);
}

TEST_F(CliTransferTest, ConnectionOptionsAreChecked)
{
    EXPECT_EQ(ctl({"download"}), 2);
    EXPECT_EQ(ctl({"download", "--usb", "--serial", "3"}), 2);
    EXPECT_EQ(ctl({"upload", "--ethernet", "127.0.0.256"}), 2);
    EXPECT_NE(stderrText.find("Invalid IP Address!"), std::string::npos);
    EXPECT_EQ(ctl({"sync", "--serial", "COM3"}), 2);
    EXPECT_EQ(ctl({"download", "--verify", "--ethernet", "127.0.0.1"}), 2); // only an upload is verified
    EXPECT_EQ(ctl({"sync", "--usb"}), 1);
    EXPECT_NE(stderrText.find("kt930ctl sync: "), std::string::npos) << stderrText;
    EXPECT_NE(stderrText.find("USB device"), std::string::npos) << stderrText;
    EXPECT_EQ(ctl({"download", "--help"}), 0);
    EXPECT_NE(stdoutText.find("--ethernet ADDR"), std::string::npos);
}

// KT930pc.ini is read as the program reads it: "COM200x" maps no port, so the
// pseudo-terminal behind it is never opened.
TEST_F(CliTransferTest, SerialPortKeysAreTakenOnlyWhenExact)
{
    PtyPair pty;
    temp.write("pc/KT930pc.ini", "[SERIALPORTS]\nCOM200x=" + pty.slavePath + "\n");
    EXPECT_EQ(ctl({"sync", "--serial", "200"}), 1);
    EXPECT_NE(stderrText.find("Serial Port Error\nOpen Error!"), std::string::npos) << stderrText;
}
}

// What replaces the data set is killed at each of its renames in turn.
TEST_F(CliTransferTest, DownloadSyncAndImportKilledAtAnyRenameLeaveTheOldOrTheNewSet)
{
    const std::string at = address(7);
    auto sim = startSimulator(at);
    temp.write("new.csv", "A,P,ADDED\n");
    const std::string ctlPath = (fs::path(KT930_TEST_APPDIR) / "kt930ctl").string();
    const std::string appDir = (temp / "pc").string();
    const SaveUnderFaults::Files before = SaveUnderFaults::savedFiles(1);
    const struct {
        std::vector<std::string> arguments;
        int minimumKills;
    } commands[] = {{{"download", "--ethernet", at}, 8 + 1}, {{"sync", "--ethernet", at}, 1}, {{"import-csv", (temp / "new.csv").string()}, 1}};
    for (const auto &command : commands) {
        std::vector<std::string> line{ctlPath};
        line.insert(line.end(), command.arguments.begin(), command.arguments.end());
        line.insert(line.end(), {"--appdir", appDir});
        const auto figures = SaveUnderFaults::killAtEveryRename(line, temp / "pc", before);
        EXPECT_GE(figures.kills, command.minimumKills) << command.arguments[0];
        EXPECT_EQ(figures.mixed, 0) << command.arguments[0];
        EXPECT_EQ(figures.leftovers, 0) << command.arguments[0];
    }
}
