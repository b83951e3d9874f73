// kt930ctl diff against another folder and against the real simulator (its memory: the demo set), and show --fields.
#include "CliFixture.h"
#include "LoopbackAddress.h"
#include "TsimProcess.h"
namespace fs = std::filesystem;

namespace {
struct CliDiffTest : CliFixture {
    // Checkitem 15 of the demo set holds "EB\t0\t0.1\t0\t5".
    void changeCheckitem15(const std::string &folder, const std::string &command)
    {
        std::string bytes = TempDir::read(temp / folder / "Data/mit.dat");
        bytes.replace(bytes.find("EB\t0\t0.1\t0\t5"), command.size(), command);
        temp.write(folder + "/Data/mit.dat", bytes);
    }
    std::string dataFiles() const
    {
        std::string all;
        for (const auto &entry : fs::directory_iterator(temp / "app/Data"))
            all += entry.path().filename().string() + ":" + TempDir::read(entry.path()) + "\n";
        return all;
    }
    static std::string shown(const std::string &low)
    {
        return "\"L - Meas. w Limits\" EB\302\2730\302\273" + low + "\302\2730\302\2735";
    }
    const std::string demo = shown("0.1"), changed = shown("0.2");
};
} // namespace

TEST_F(CliDiffTest, FolderAgainstFolderOrItsDataFolder)
{
    fs::copy(temp / "app", temp / "other", fs::copy_options::recursive);
    for (const char *other : {"other/Data", "other/Data/", "other/"})
        EXPECT_EQ(outcome(ctl({"diff", (temp / other).string()})), std::tuple(0, "No differences\n", "")) << other;
    changeCheckitem15("other", "EB\t0\t0.2\t0\t5");
    const std::string line = "checkitem 15: " + demo + " -> " + changed;
    EXPECT_EQ(outcome(ctl({"diff", (temp / "other").string()})),
              std::tuple(1, line + "\n1 difference (checkitems 1)\n", ""));
    EXPECT_NE(ctl({"diff", (temp / "other").string(), "--json"}).out.find("{\"kind\": \"checkitem\", \"number\": 15"),
              std::string::npos);
    EXPECT_EQ(outcome(ctl({"diff", temp.path().string()})),
              std::tuple(2, "",
                         "kt930ctl diff: " + temp.path().string() +
                             " holds no data set: neither it nor its Data folder has mit.dat, inspection.asq, "
                             "usertester1-5.asq or testProc.asq\n"));
    // A file that did not load was compared as its defaults: printed, but trouble.
    temp.write("other/Data/inspection.asq", "not an autosequence file");
    const ProgramRun corrupt = ctl({"diff", (temp / "other").string()});
    EXPECT_EQ(corrupt.exitCode, 2);
    EXPECT_TRUE(corrupt.err.ends_with("kt930ctl diff: a data set did not load cleanly (see above); defaults stood in "
                                      "for what failed\n"))
        << corrupt.err;
    EXPECT_EQ(ctl({"diff"}).err.substr(0, 102), "kt930ctl diff: name another folder, or the analyzer with --usb, "
                                                "--ethernet A.B.C.D or --serial N\nUsage");
}

// The analyzer is read into memory only: the PC's files stay as they were, byte for byte.
TEST_F(CliDiffTest, PcAgainstTheAnalyzerChangesNoFile)
{
    const std::string at = LoopbackAddress(40, 32).text();
    TsimProcess sim(
        {"--listen", at + ":60601", "--appdir", KT930_TEST_APPDIR, "--memory", (temp / "mem.bin").string()});
    ASSERT_TRUE(sim.waitForLog("ready")) << sim.log();
    changeCheckitem15("app", "EB\t0\t0.2\t0\t5");
    const std::string before = dataFiles();
    ProgramRun result = ctl({"diff", "--ethernet", at});
    EXPECT_EQ(std::tuple(result.exitCode, result.out),
              std::tuple(1, "checkitem 15: " + changed + " -> " + demo + "\n1 difference (checkitems 1)\n"))
        << result.err;
    EXPECT_EQ(dataFiles(), before);
    sim.stop();
    result = ctl({"diff", "--ethernet", at});
    EXPECT_EQ(std::tuple(result.exitCode, result.out), std::tuple(2, ""));
    EXPECT_TRUE(
        result.err.ends_with("kt930ctl diff: the analyzer's data set could not be read; nothing was compared\n"))
        << result.err;
}

TEST_F(CliDiffTest, ShowFieldsNamesEachValueAndSaysWhenACommandDoesNotFit)
{
    changeCheckitem15("app", "EB\t0\t0.1\t0\tx");
    const std::string text = ctl({"show", "--fields"}).out;
    const std::string fields = "        Test (EB/IR/LC)=EB, Low limit=0 ohm/MOhm/uA, High limit=0.1 ohm/MOhm/uA, "
                               "Test voltage=0 V\n        does not fit its fields: \"x\" is not a number (Duration)\n";
    EXPECT_NE(text.find("EB\302\2730\302\2730.1\302\2730\302\273x\n" + fields), std::string::npos) << text;
}
