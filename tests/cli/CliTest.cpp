// kt930ctl run as a program on a temporary copy of the demo application folder.
#include "ByteBuilder.h"
#include "ProgramRun.h"
#include "TempDir.h"
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

namespace fs = std::filesystem;

namespace {
class CliTest : public ::testing::Test {
protected:
    CliTest()
    {
        fs::create_directories(temp / "app");
        fs::copy(std::string(KT930_TEST_APPDIR) + "/Data", temp / "app/Data", fs::copy_options::recursive);
    }

    ProgramRun run(std::vector<std::string> arguments)
    {
        return ProgramRun::run("kt930ctl", std::move(arguments), temp.path());
    }
    std::string appDir() const { return (temp / "app").string(); }
    fs::path mitDat() const { return temp / "app/Data/mit.dat"; }

    static bool hasLine(const std::string &text, const std::string &line)
    {
        std::istringstream in(text);
        for (std::string candidate; std::getline(in, candidate);)
            if (candidate == line)
                return true;
        return false;
    }

    TempDir temp;
};
}

TEST_F(CliTest, ShowListsTheDataSetAsTheFrameDoes)
{
    ProgramRun result = run({"show", "--appdir", appDir()});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string &out = result.out;
    EXPECT_TRUE(hasLine(out, "Load messages: none"));
    EXPECT_TRUE(hasLine(out, "Checkitems (37 used):"));
    EXPECT_TRUE(hasLine(out, "  15  E Earth bond | L - Meas. w Limits | EB\xC2\xBB" "0\xC2\xBB" "0.1\xC2\xBB" "0\xC2\xBB" "5"));
    EXPECT_TRUE(hasLine(out, "  37     | E - Data Entry | Operator initials\xC2\xBB\xC2\xBB\xC2\xBBUSER"));
    EXPECT_TRUE(hasLine(out, "  1. Visual Check - Mains Lead"));
    EXPECT_TRUE(hasLine(out, "  18. <unused>"));
    EXPECT_TRUE(hasLine(out, "  i. WORKSHOP BENCH"));
    EXPECT_TRUE(hasLine(out, "      5. Printer Report - Serial Port 1"));
    EXPECT_TRUE(hasLine(out, "  iii. USER TESTER 3")); // blank name
    EXPECT_TRUE(hasLine(out, "Checklists (4 used):"));
    EXPECT_TRUE(hasLine(out, "  4. Incoming inspection: 8 9 36 37"));
    EXPECT_EQ(result.err, "");
}

TEST_F(CliTest, ShowJsonAndLoadMessages)
{
    fs::remove(mitDat());
    fs::remove(temp / "app/Data/catdes.dat");
    ProgramRun result = run({"show", "--json", "--appdir", appDir()});
    ASSERT_EQ(result.exitCode, 0);
    const std::string &out = result.out;
    EXPECT_NE(out.find("{\"caption\": \"Instruction List Error\", \"text\": \"Warning!! Corrupt Instruction List\\n"
                       "Please restore the list from the KT930.\"}"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("{\"caption\": \"ERROR\", \"text\": \"There has been an error initializing the category "
                       "descriptors\\rThis will not affect"),
              std::string::npos);
    EXPECT_NE(out.find("\"checkitems\": [\n  ],"), std::string::npos);
    EXPECT_NE(out.find("{\"number\": 2, \"text\": \"Visual Check - Enclosure\"}"), std::string::npos);
    EXPECT_NE(out.find("{\"text\": \"ii. FIELD SERVICE\", \"sequences\": [\"1. Quick Check - Class I\", "),
              std::string::npos);
    EXPECT_NE(out.find("{\"number\": 3, \"title\": \"Extension lead test\", \"items\": [2, 3, 4, 16, 20, 35]}"),
              std::string::npos);
}

TEST_F(CliTest, ExportWritesTheUsedCheckitemsOrEverySlot)
{
    const fs::path csv = temp / "list.csv";
    ProgramRun result = run({"export-csv", csv.string(), "--appdir", appDir()});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    std::string text = TempDir::read(csv);
    EXPECT_EQ(text.substr(0, 41), "A,K,Disconnect the device from the mains\n");
    EXPECT_NE(text.find("\nE,L,EB\t0\t0.1\t0\t5\n"), std::string::npos);
    EXPECT_NE(text.find("\n ,K,Test complete\n"), std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 37); // the demo's checkitems
    EXPECT_EQ(text.find('\0'), std::string::npos);

    ASSERT_EQ(run({"export-csv", csv.string(), "--all", "--appdir", appDir()}).exitCode, 0);
    text = TempDir::read(csv);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1044);

    ProgramRun failed = run({"export-csv", (temp / "no/such/folder/x.csv").string(), "--appdir", appDir()});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_NE(failed.err.find("cannot create"), std::string::npos);
}

TEST_F(CliTest, ImportOfAMissingFileOrAFolderReportsFileIoErrorAndChangesNothing)
{
    const std::string before = TempDir::read(mitDat());
    fs::create_directories(temp / "folder.csv");
    for (const char *name : {"missing.csv", "folder.csv"}) {
        ProgramRun result = run({"import-csv", (temp / name).string(), "--appdir", appDir()});
        EXPECT_EQ(result.exitCode, 1) << name;
        EXPECT_EQ(result.err, "ERROR\nAn error occurred while importing the checkitems.\n"
                              "An error code of -1 was returned - File I/O Error.\n");
        EXPECT_EQ(TempDir::read(mitDat()), before);
    }
}

TEST_F(CliTest, ImportOverflowSavesWhatFittedAndFails)
{
    std::string lines;
    for (int i = 0; i < 1100; ++i)
        lines += "P,K,Step " + std::to_string(i) + "\n";
    temp.write("many.csv", lines);
    ProgramRun result = run({"import-csv", (temp / "many.csv").string(), "--appdir", appDir()});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "OVERFLOW\nWARNING!\n\nNot all checkitems could be imported because there\n"
                          "was insufficient space in the checkitem database to\n"
                          "insert all of the checkitems from the specified file.\n");
    const std::string after = TempDir::read(mitDat());
    EXPECT_EQ(after.substr(36 * 44, 44).substr(0, 19), std::string(" EOperator initials"));
    EXPECT_EQ(after.substr(37 * 44, 44), ByteBuilder::checkitem('P', 'K', "Step 0"));
    EXPECT_EQ(after.substr(1043 * 44, 44), ByteBuilder::checkitem('P', 'K', "Step 1006"));
}

TEST_F(CliTest, UsageErrorsAndHelp)
{
    ProgramRun help = run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(hasLine(help.out, "  import-csv      add the checkitems of a CSV file to the checkitem table"));
    EXPECT_NE(run({"show", "--help"}).out.find("--json"), std::string::npos);

    // Each refusal says why before the usage; an option's value is never the next
    // option, and an option counts once.
    const std::vector<std::pair<std::vector<std::string>, std::string>> refused{
        {{}, ""},
        {{"show", "--bogus"}, "kt930ctl show: unknown option --bogus\n"},
        {{"export-csv"}, "kt930ctl export-csv: expected 1 argument\n"},
        {{"frobnicate"}, "kt930ctl: unknown command \"frobnicate\"\n"},
        {{"listing", "--pdf", "--appdir", "app"}, "kt930ctl listing: --pdf needs a value\n"},
        {{"show", "--appdir"}, "kt930ctl show: --appdir needs a folder\n"},
        {{"listing", "--pdf", "a.pdf", "--pdf", "b.pdf"}, "kt930ctl listing: --pdf is given twice\n"},
        {{"show", "--appdir", "a", "--appdir", "b"}, "kt930ctl show: --appdir is given twice\n"},
    };
    for (const auto &[arguments, message] : refused) {
        ProgramRun result = run(arguments);
        EXPECT_EQ(result.exitCode, 2) << message;
        EXPECT_EQ(result.err.substr(0, result.err.find("Usage:")), message);
    }
}

// A copy laid out as the package installs it: the first command seeds the per-user
// folder (with one message), later commands work on it, and where says so.
TEST_F(CliTest, InstalledCopyReadsTheShippedDefaultsUntilAWriterSeedsThePerUserFolder)
{
    const fs::path usr = temp / "root/usr";
    fs::create_directories(usr / "bin");
    fs::create_directories(usr / "share/kt930pc");
    fs::copy(std::string(KT930_TEST_APPDIR) + "/Data", usr / "share/kt930pc/Data", fs::copy_options::recursive);
    fs::copy_file(std::string(KT930_TEST_APPDIR) + "/kt930ctl", usr / "bin/kt930ctl");
    const fs::path home = temp / "home";
    fs::create_directories(home);
    ::setenv("HOME", home.c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
    ::unsetenv("KT930PC_APPDIR");
    const std::string ctl = (usr / "bin/kt930ctl").string();
    const fs::path userFolder = home / ".local/share/kt930pc";

    ProgramRun where = ProgramRun::runTool(ctl, {"where"}, temp.path());
    EXPECT_EQ(where.exitCode, 0);
    EXPECT_EQ(where.out, "application folder: " + userFolder.string() + " (not there yet)\n"
                         "  because the program is installed: the per-user data folder in ~/.local/share\n"
                         "data folder:        " + (userFolder / "Data").string() + " (not there yet)\n"
                         "settings file:      " + (userFolder / "KT930pc.ini").string() + " (not there yet)\n"
                         "plug-ins:           " + (usr / "lib/kt930pc/plugins").string() + " (not there yet)\n"
                         "help files:         " + (usr / "share/kt930pc").string() + "\n"
                         "shipped defaults:   " + (usr / "share/kt930pc/Data").string() + "\n");

    // A reader creates nothing, also not where a relative folder would put it: it reads the shipped defaults.
    ProgramRun first = ProgramRun::runTool(ctl, {"show"}, temp.path());
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(first.err, "kt930ctl: there is no data folder " + (userFolder / "Data").string()
                             + " yet: reading the shipped defaults in " + (usr / "share/kt930pc/Data").string() + "\n");
    fs::create_directories(temp / "cwd");
    ProgramRun relative = ProgramRun::runTool("env", {"-C", (temp / "cwd").string(), ctl, "show", "--appdir", "rel/app"},
                                              temp.path());
    EXPECT_EQ(relative.out, first.out);
    EXPECT_FALSE(fs::exists(home / ".local"));
    EXPECT_TRUE(fs::is_empty(temp / "cwd"));

    temp.write("empty.csv", "");
    ProgramRun seeding = ProgramRun::runTool(ctl, {"import-csv", (temp / "empty.csv").string()}, temp.path());
    EXPECT_EQ(seeding.exitCode, 0);
    EXPECT_EQ(seeding.err.substr(0, seeding.err.find('\n') + 1),
              "kt930ctl: Your data folder " + userFolder.string()
                  + " was created from the shipped defaults. Your checkitems, sequences and settings are kept there.\n");
    EXPECT_EQ(TempDir::read(userFolder / "Data/mit.dat"), TempDir::read(usr / "share/kt930pc/Data/mit.dat"));

    EXPECT_EQ(ProgramRun::runTool(ctl, {"show"}, temp.path()).out, first.out);

    where = ProgramRun::runTool(ctl, {"where", "--appdir", appDir()}, temp.path());
    EXPECT_TRUE(hasLine(where.out, "application folder: " + appDir()));
    EXPECT_TRUE(hasLine(where.out, "  because --appdir was given"));
}

TEST_F(CliTest, ImportSkipsCountsAndNamesLinesItCannotStore)
{
    const std::string before = TempDir::read(mitDat());
    const std::string into = "Imported 0 checkitems into " + mitDat().string();
    std::string noCommas;
    for (int i = 0; i < 1234; ++i)
        noCommas += "no comma\n";
    const struct {
        std::string csv;
        int exitCode;
        std::string out;
    } cases[] = {
        {"E,L,EB\t0\t0.5\t0\t5\nlower,M,IR\t500\t10\r\nnot a checkitem line\n", 0,
         "Imported 2 checkitems into " + mitDat().string() + "; skipped 1 line that is not category,op code,command\n"},
        {"", 0, into + "\n"},
        {noCommas, 1,
         into + "; skipped 1234 lines that are not category,op code,command\n"},
        {"A,Z,zap\nA,Z,zap\n,0,x\nA,Z,zap\nA,Z,zap\nA,Z,zap\nA,Z,zap\n", 1,
         into + "; skipped 7 lines with an op code that no definition file knows: line 1 (Z), line 2 (Z), "
                "line 3 (0), line 4 (Z), line 5 (Z) and 2 more\n"},
        {"B,Z,zap\nA,K,ok\nno comma\n,0,x\n", 0,
         "Imported 1 checkitems into " + mitDat().string() + "; skipped 3 lines: 1 that is not category,op code,"
         "command, 2 with an op code that no definition file knows: line 1 (Z), line 4 (0)\n"},
    };
    for (const auto &c : cases) {
        temp.write("in.csv", c.csv);
        ProgramRun result = run({"import-csv", (temp / "in.csv").string(), "--appdir", appDir()});
        EXPECT_EQ(result.exitCode, c.exitCode) << c.out;
        EXPECT_EQ(result.out, c.out);
    }
    // Added after the used checkitems, the rest of the table unchanged.
    const std::string after = TempDir::read(mitDat());
    ASSERT_EQ(after.size(), 45936u);
    EXPECT_EQ(after.substr(0, 37 * 44), before.substr(0, 37 * 44));
    EXPECT_EQ(after.substr(37 * 44, 44), ByteBuilder::checkitem('E', 'L', "EB\t0\t0.5\t0\t5"));
    EXPECT_EQ(after.substr(39 * 44, 44), ByteBuilder::checkitem('A', 'K', "ok"));
    EXPECT_EQ(after.substr(40 * 44), before.substr(40 * 44));
}

TEST_F(CliTest, ShowWarnsOfADataFolderOrFileOthersMayWriteAndOfAnUnreadableFile)
{
    const fs::path data = temp / "app/Data";
    fs::permissions(data, fs::perms::group_write, fs::perm_options::add);
    fs::permissions(data / "usertester2.asq", fs::perms::others_write, fs::perm_options::add);
    fs::resize_file(data / "inspection.asq", 100);
    ProgramRun result = run({"show", "--appdir", appDir()});
    ASSERT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("\nData folder warnings:\n  Data folder " + data.string()
                              + " is writable by other users: run chmod go-w " + data.string() + "\n  Data file "
                              + (data / "usertester2.asq").string() + " is writable by other users: run chmod go-w "
                              + (data / "usertester2.asq").string() + "\n  " + (data / "inspection.asq").string()
                              + " could not be read: before a save replaces it, its content is kept as "
                                "inspection.asq.unreadable-<date>-<time> beside it.\n\nCheckitems"),
              std::string::npos)
        << result.out;
}

TEST_F(CliTest, AnUnreadableApplicationFolderIsSaidPlainly)
{
    temp.write("file", "not a folder");
    for (const char *command : {"show", "export-csv"}) {
        std::vector<std::string> arguments{command, "--appdir", (temp / "file").string()};
        if (std::string(command) == "export-csv")
            arguments.push_back((temp / "out.csv").string());
        ProgramRun result = run(arguments);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.err, "kt930ctl " + std::string(command) + ": the application folder "
                                  + (temp / "file").string() + " cannot be read (Not a directory)\n");
    }
}
