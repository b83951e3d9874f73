#include "ByteBuilder.h"
#include "CliFixture.h"
#include "TrestorePoints.h"
#include <cstdlib>
#include <map>

namespace fs = std::filesystem;

namespace {
using CliTest = CliFixture;
using CliRestore = CliFixture;

// The lines of `lines` that text does not hold as whole lines, each ended by a line feed.
std::string missing(const std::string &text, const std::vector<std::string> &lines)
{
    std::string absent;
    for (const std::string &line : lines)
        absent += ("\n" + text).find("\n" + line + "\n") == std::string::npos ? line + "\n" : "";
    return absent;
}
} // namespace

TEST_F(CliTest, ShowListsTheDataSetAsTheFrameDoes)
{
    ProgramRun result = ctl({"show"});
    EXPECT_EQ(std::pair(result.exitCode, result.err), std::pair(0, std::string()));
    EXPECT_EQ(missing(result.out, {"Load messages: none", "Checkitems (37 used):",
                                   "  15  E Earth bond | L - Meas. w Limits | EB\u00BB0\u00BB0.1\u00BB0\u00BB5",
                                   "  37     | E - Data Entry | Operator initials\u00BB\u00BB\u00BBUSER",
                                   "  1. Visual Check - Mains Lead", "  18. <unused>", "  i. WORKSHOP BENCH",
                                   "      5. Printer Report - Serial Port 1",
                                   "  iii. USER TESTER 3", // blank name
                                   "Checklists (4 used):", "  4. Incoming inspection: 8 9 36 37"}),
              "");
}

TEST_F(CliTest, ShowJsonAndLoadMessages)
{
    fs::remove(data("mit.dat"));
    fs::remove(data("catdes.dat"));
    ProgramRun result = ctl({"show", "--json"});
    for (const char *part :
         {"{\"caption\": \"Instruction List Error\", \"text\": \"Warning!! Corrupt Instruction List\\n"
          "Please restore the list from the KT930.\"}",
          "{\"caption\": \"ERROR\", \"text\": \"There has been an error initializing the category descriptors\\rThis "
          "will not affect",
          "\"checkitems\": [\n  ],", "{\"number\": 2, \"text\": \"Visual Check - Enclosure\"}",
          "{\"text\": \"ii. FIELD SERVICE\", \"sequences\": [\"1. Quick Check - Class I\", ",
          "{\"number\": 3, \"title\": \"Extension lead test\", \"items\": [2, 3, 4, 16, 20, 35], \"steps\": "
          "[\"2 (no such checkitem)\", \"3 (no such checkitem)\", \"4 (no such checkitem)\", \"16 (no such "
          "checkitem)\", \"20 (no such checkitem)\", \"35 (no such checkitem)\"]}"})
        EXPECT_NE(result.out.find(part), std::string::npos) << part << "\nnot in\n" << result.out;
}

TEST_F(CliTest, ExportWritesTheUsedCheckitemsOrEverySlot)
{
    const fs::path csv = temp / "list.csv";
    ASSERT_EQ(ctl({"export-csv", csv.string()}).exitCode, 0);
    std::string text = TempDir::read(csv);
    EXPECT_EQ(text.substr(0, 41) + missing(text, {"E,L,EB\t0\t0.1\t0\t5", " ,K,Test complete"}),
              "A,K,Disconnect the device from the mains\n");
    EXPECT_EQ(std::pair(std::count(text.begin(), text.end(), '\n'), text.find('\0')),
              std::pair(37L, std::string::npos)); // the demo's
    ASSERT_EQ(ctl({"export-csv", csv.string(), "--all"}).exitCode, 0);
    text = TempDir::read(csv);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1044);
    ProgramRun failed = ctl({"export-csv", (temp / "no/such/folder/x.csv").string()});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_NE(failed.err.find("cannot create"), std::string::npos);
}

// A missing file or a folder is a file error; an overflow saves what fitted.
TEST_F(CliTest, ImportFailuresSayWhyAndChangeNothingOrSaveWhatFitted)
{
    const std::string before = TempDir::read(data("mit.dat"));
    fs::create_directories(temp / "folder.csv");
    for (const char *name : {"missing.csv", "folder.csv"})
        EXPECT_EQ(outcome(ctl({"import-csv", (temp / name).string()})),
                  std::tuple(1, "",
                             "ERROR\nAn error occurred while importing the checkitems.\nAn error code of -1 was "
                             "returned - File I/O Error.\n"))
            << name;
    EXPECT_EQ(TempDir::read(data("mit.dat")), before);
    std::string lines;
    for (int i = 0; i < 1100; ++i)
        lines += "P,K,Step " + std::to_string(i) + "\n";
    temp.write("many.csv", lines);
    ProgramRun result = ctl({"import-csv", (temp / "many.csv").string()});
    EXPECT_EQ(
        std::pair(result.exitCode, result.err),
        std::pair(1, std::string("OVERFLOW\nWARNING!\n\nNot all checkitems could be imported because there\nwas "
                                 "insufficient space in the "
                                 "checkitem database to\ninsert all of the checkitems from the specified file.\n")));
    const std::string after = TempDir::read(data("mit.dat"));
    EXPECT_EQ(after.substr(0, 37 * 44), before.substr(0, 37 * 44));
    EXPECT_EQ(after.substr(37 * 44, 44) + after.substr(1043 * 44),
              ByteBuilder::checkitem('P', 'K', "Step 0") + ByteBuilder::checkitem('P', 'K', "Step 1006"));
}

// Each refusal says why before the usage; an option's value is never the next option, and an option counts once;
// only an upload is verified.
TEST_F(CliTest, UsageErrorsAndHelp)
{
    ProgramRun help = run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(missing(help.out, {"  import-csv      add the checkitems of a CSV file to the checkitem table"}), "");
    EXPECT_NE(run({"show", "--help"}).out.find("--json"), std::string::npos);
    const std::string oneLink = "choose exactly one of --usb, --ethernet A.B.C.D, --serial N\n";
    const std::pair<std::vector<std::string>, std::string> refused[] = {
        {{}, ""},
        {{"show", "--bogus"}, "kt930ctl show: unknown option --bogus\n"},
        {{"export-csv"}, "kt930ctl export-csv: expected 1 argument\n"},
        {{"frobnicate"}, "kt930ctl: unknown command \"frobnicate\"\n"},
        {{"listing", "--pdf", "--appdir", "app"}, "kt930ctl listing: --pdf needs a value\n"},
        {{"show", "--appdir"}, "kt930ctl show: --appdir needs a folder\n"},
        {{"listing", "--pdf", "a.pdf", "--pdf", "b.pdf"}, "kt930ctl listing: --pdf is given twice\n"},
        {{"show", "--appdir", "a", "--appdir", "b"}, "kt930ctl show: --appdir is given twice\n"},
        {{"download"}, "kt930ctl download: " + oneLink},
        {{"download", "--usb", "--serial", "3"}, "kt930ctl download: " + oneLink},
        {{"sync", "--serial", "COM3"}, "kt930ctl sync: --serial needs a port number from 1 to 256\n"},
        {{"sync", "--ethernet", "localhost"}, "kt930ctl sync: --ethernet needs an IPv4 address such as 127.0.0.1\n"},
        {{"upload", "--ethernet", "127.0.0.256"}, "kt930ctl upload: Invalid IP Address!\n"},
        {{"download", "--verify", "--ethernet", "127.0.0.1"}, "kt930ctl download: unknown option --verify\n"},
    };
    for (const auto &[arguments, message] : refused) {
        ProgramRun result = run(arguments);
        EXPECT_EQ(std::pair(result.exitCode, result.err.substr(0, result.err.find("Usage:"))), std::pair(2, message));
    }
}

// A copy laid out as the package installs it: a reader reads the shipped defaults and creates nothing, also not
// where a relative folder would put it; the first writer seeds the per-user folder (with one message); where says so.
TEST_F(CliTest, InstalledCopyReadsTheShippedDefaultsUntilAWriterSeedsThePerUserFolder)
{
    const fs::path usr = temp / "root/usr", home = temp / "home", userFolder = home / ".local/share/kt930pc";
    for (const fs::path &folder : {usr / "bin", usr / "share/kt930pc", home})
        fs::create_directories(folder);
    fs::copy(std::string(KT930_TEST_APPDIR) + "/Data", usr / "share/kt930pc/Data", fs::copy_options::recursive);
    fs::copy_file(std::string(KT930_TEST_APPDIR) + "/kt930ctl", usr / "bin/kt930ctl");
    ::setenv("HOME", home.c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
    ::unsetenv("KT930PC_APPDIR");
    const std::string ctl = (usr / "bin/kt930ctl").string();
    auto installed = [&](std::vector<std::string> arguments) {
        return ProgramRun::runTool(ctl, std::move(arguments), temp.path());
    };

    // clang-format off
    EXPECT_EQ(outcome(installed({"where"})),
              std::tuple(0, "application folder: " + userFolder.string() + " (not there yet)\n"
                                "  because the program is installed: the per-user data folder in ~/.local/share\n"
                                "data folder:        " + (userFolder / "Data").string() + " (not there yet)\n"
                                "settings file:      " + (userFolder / "KT930pc.ini").string() + " (not there yet)\n"
                                "plug-ins:           " + (usr / "lib/kt930pc/plugins").string() + " (not there yet)\n"
                                "help files:         " + (usr / "share/kt930pc").string() + "\n"
                                "shipped defaults:   " + (usr / "share/kt930pc/Data").string() + "\n",
                         std::string()));
    // clang-format on
    ProgramRun first = installed({"show"});
    EXPECT_EQ(std::pair(first.exitCode, first.err),
              std::pair(0, "kt930ctl: there is no data folder " + (userFolder / "Data").string() +
                               " yet: reading the shipped defaults in " + (usr / "share/kt930pc/Data").string() +
                               "\n"));
    fs::create_directories(temp / "cwd");
    EXPECT_EQ(
        ProgramRun::runTool("env", {"-C", (temp / "cwd").string(), ctl, "show", "--appdir", "rel/app"}, temp.path())
            .out,
        first.out);
    EXPECT_FALSE(fs::exists(home / ".local"));
    EXPECT_TRUE(fs::is_empty(temp / "cwd"));

    temp.write("empty.csv", "");
    ProgramRun seeding = installed({"import-csv", (temp / "empty.csv").string()});
    EXPECT_EQ(
        std::pair(seeding.exitCode, seeding.err.substr(0, seeding.err.find('\n') + 1)),
        std::pair(
            0,
            "kt930ctl: Your data folder " + userFolder.string() +
                " was created from the shipped defaults. Your checkitems, sequences and settings are kept there.\n"));
    EXPECT_EQ(TempDir::read(userFolder / "Data/mit.dat"), TempDir::read(usr / "share/kt930pc/Data/mit.dat"));
    EXPECT_EQ(installed({"show"}).out, first.out);
    EXPECT_EQ(missing(installed({"where", "--appdir", appDir()}).out,
                      {"application folder: " + appDir(), "  because --appdir was given"}),
              "");
}

// Added after the used checkitems, the rest of the table unchanged.
TEST_F(CliTest, ImportSkipsCountsAndNamesLinesItCannotStore)
{
    const std::string before = TempDir::read(data("mit.dat")),
                      into = "Imported 0 checkitems into " + data("mit.dat").string();
    const std::tuple<std::string, int, std::string> cases[] = {
        {"E,L,EB\t0\t0.5\t0\t5\nlower,M,IR\t500\t10\r\nnot a checkitem line\nnor this\n", 0,
         "Imported 2 checkitems into " + data("mit.dat").string() +
             "; skipped 2 lines that are not category,op code,command\n"},
        {"no comma\n", 1, into + "; skipped 1 line that is not category,op code,command\n"},
        {"", 0, into + "\n"},
        {"A,Z,zap\nA,Z,zap\n,0,x\nA,Z,zap\nA,Z,zap\nA,Z,zap\nA,Z,zap\n", 1,
         into + "; skipped 7 lines with an op code that no definition file knows: line 1 (Z), line 2 (Z), line 3 (0), "
                "line 4 (Z), "
                "line 5 (Z) and 2 more\n"},
        {"B,Z,zap\nA,K,ok\nno comma\n,0,x\n", 0,
         "Imported 1 checkitems into " + data("mit.dat").string() +
             "; skipped 3 lines: 1 that is not category,op code,command, 2 with an "
             "op code that no definition file knows: line 1 (Z), line 4 (0)\n"},
    };
    for (const auto &[csv, exitCode, out] : cases) {
        temp.write("in.csv", csv);
        ProgramRun result = ctl({"import-csv", (temp / "in.csv").string()});
        EXPECT_EQ(std::pair(result.exitCode, result.out), std::pair(exitCode, out));
    }
    const std::string after = TempDir::read(data("mit.dat"));
    EXPECT_EQ(after.substr(0, 38 * 44) + after.substr(39 * 44),
              before.substr(0, 37 * 44) + ByteBuilder::checkitem('E', 'L', "EB\t0\t0.5\t0\t5") +
                  ByteBuilder::checkitem('A', 'K', "ok") + before.substr(40 * 44));
}

TEST_F(CliTest, ShowWarnsOfADataFolderOrFileOthersMayWriteAndOfAnUnreadableFile)
{
    const std::string folder = (temp / "app/Data").string(), tester = data("usertester2.asq").string();
    fs::permissions(temp / "app/Data", fs::perms::group_write, fs::perm_options::add);
    fs::permissions(tester, fs::perms::others_write, fs::perm_options::add);
    fs::resize_file(data("inspection.asq"), 100);
    ProgramRun result = ctl({"show"});
    ASSERT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("\nData folder warnings:\n  Data folder " + folder +
                              " is writable by other users: run chmod go-w " + folder + "\n  Data file " + tester +
                              " is writable by other users: run chmod go-w " + tester + "\n  " +
                              data("inspection.asq").string() +
                              " could not be read: before a save replaces it, its content is kept as "
                              "inspection.asq.unreadable-<date>-<time> beside it.\n\nCheckitems"),
              std::string::npos)
        << result.out;
}

TEST_F(CliTest, AnUnreadableApplicationFolderIsSaidPlainly)
{
    const std::string file = temp.write("file", "not a folder").string();
    for (std::vector<std::string> arguments :
         {std::vector<std::string>{"show"}, {"export-csv", (temp / "out.csv").string()}}) {
        const std::string command = arguments[0];
        arguments.insert(arguments.end(), {"--appdir", file});
        EXPECT_EQ(outcome(run(arguments)), std::tuple(1, "",
                                                      "kt930ctl " + command + ": the application folder " + file +
                                                          " cannot be read (Not a directory)\n"));
    }
}

TEST_F(CliRestore, AnImportIsUndoneByteForByteAndTheUndoIsListedAndUndoable)
{
    const fs::path folder = temp / "app/Data";
    auto dataFiles = [&] {
        std::map<fs::path, std::string> files;
        for (const fs::directory_entry &entry : fs::directory_iterator(folder))
            if (entry.is_regular_file() && entry.path().filename().string()[0] != '.')
                files[entry.path()] = TempDir::read(entry.path());
        return files;
    };
    auto timeOf = [&](std::size_t number) { return TrestorePoints(folder).list().at(number - 1).time; };

    EXPECT_EQ(ctl({"restore-points"}).out, "There are no restore points in " + folder.string() + ".\n");
    const auto before = dataFiles();
    temp.write("in.csv", "E,L,EB\t0\t0.5\t0\t5\n");
    ASSERT_EQ(ctl({"import-csv", (temp / "in.csv").string()}).exitCode, 0);
    const auto imported = dataFiles();
    const std::string importTime = timeOf(1);
    EXPECT_EQ(ctl({"restore-points"}).out, "  1  " + importTime + "  import  mit.dat\n");
    EXPECT_EQ(outcome(ctl({"restore", "2"})),
              std::tuple(1, "", "kt930ctl restore: There is no restore point 2; the restore points are 1 to 1.\n"));
    ProgramRun notANumber = ctl({"restore", "1x"});
    EXPECT_EQ(std::pair(notANumber.exitCode,
                        notANumber.err.rfind(
                            "kt930ctl restore: \"1x\" is not a restore point number\nUsage: kt930ctl restore N", 0)),
              std::pair(2, std::size_t(0)));
    EXPECT_EQ(dataFiles(), imported);

    EXPECT_EQ(ctl({"restore", "1"}).out,
              "Restored from restore point 1 (" + importTime +
                  ", replaced by import): mit.dat\n"
                  "The files this replaced are now restore point 1; kt930ctl restore 1 undoes this.\n");
    EXPECT_EQ(dataFiles(), before);
    EXPECT_EQ(ctl({"restore-points"}).out, "  1  " + timeOf(1) + "  restore 1 (" + importTime + ")  mit.dat\n  2  " +
                                               importTime + "  import  mit.dat\n");
    ASSERT_EQ(ctl({"restore", "1"}).exitCode, 0);
    EXPECT_EQ(dataFiles(), imported);
}
