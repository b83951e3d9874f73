// kt930ctl restore-points and restore, run as programs: an import is undone, and the undo too.
#include "ProgramRun.h"
#include "TempDir.h"
#include "TrestorePoints.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <map>

namespace fs = std::filesystem;

namespace {
class CliRestoreTest : public ::testing::Test {
protected:
    CliRestoreTest()
    {
        fs::create_directories(data);
        fs::copy(std::string(KT930_TEST_APPDIR) + "/Data", data, fs::copy_options::recursive);
    }

    ProgramRun run(const std::string &command, std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), command);
        arguments.insert(arguments.end(), {"--appdir", (temp / "app").string()});
        return ProgramRun::run("kt930ctl", std::move(arguments), temp.path());
    }
    std::map<std::string, std::string> dataFiles() const
    {
        std::map<std::string, std::string> files;
        for (const fs::directory_entry &entry : fs::directory_iterator(data))
            if (entry.is_regular_file() && entry.path().filename().string()[0] != '.')
                files[entry.path().filename().string()] = TempDir::read(entry.path());
        return files;
    }
    std::string timeOf(int number) const { return TrestorePoints(data).list().at(std::size_t(number - 1)).time; }

    TempDir temp;
    const fs::path data = temp / "app/Data";
};
}

TEST_F(CliRestoreTest, AnImportIsUndoneByteForByteAndTheUndoIsItselfUndoable)
{
    ProgramRun none = run("restore-points");
    EXPECT_EQ(none.exitCode, 0);
    EXPECT_EQ(none.out, "There are no restore points in " + data.string() + ".\n");

    const auto before = dataFiles();
    temp.write("in.csv", "E,L,EB\t0\t0.5\t0\t5\n");
    ASSERT_EQ(run("import-csv", {(temp / "in.csv").string()}).exitCode, 0);
    const auto imported = dataFiles();
    ASSERT_NE(imported, before);
    const std::string importTime = timeOf(1);
    EXPECT_EQ(run("restore-points").out, "  1  " + importTime + "  import  mit.dat\n");

    ProgramRun restored = run("restore", {"1"});
    ASSERT_EQ(restored.exitCode, 0) << restored.err;
    EXPECT_EQ(restored.out, "Restored from restore point 1 (" + importTime + ", replaced by import): mit.dat\n"
                            "The files this replaced are now restore point 1; kt930ctl restore 1 undoes this.\n");
    EXPECT_EQ(dataFiles(), before);
    EXPECT_EQ(run("restore-points").out, "  1  " + timeOf(1) + "  restore 1 (" + importTime + ")  mit.dat\n"
                                         "  2  " + importTime + "  import  mit.dat\n");

    ASSERT_EQ(run("restore", {"1"}).exitCode, 0);
    EXPECT_EQ(dataFiles(), imported);
}

TEST_F(CliRestoreTest, BadNumbersAreRefusedAndChangeNothing)
{
    ASSERT_EQ(run("restore", {"1"}).err,
              "kt930ctl restore: There are no restore points in " + (data / ".restore").string() + ".\n");
    temp.write("in.csv", "E,L,EB\t0\t0.5\t0\t5\n");
    ASSERT_EQ(run("import-csv", {(temp / "in.csv").string()}).exitCode, 0);
    const auto imported = dataFiles();
    const struct {
        std::string number;
        int exitCode;
        std::string err;
    } refused[] = {
        {"2", 1, "kt930ctl restore: There is no restore point 2; the restore points are 1 to 1.\n"},
        {"0", 1, "kt930ctl restore: There is no restore point 0; the restore points are 1 to 1.\n"},
        {"1x", 2, "kt930ctl restore: \"1x\" is not a restore point number\nUsage: kt930ctl restore N"},
    };
    for (const auto &[number, exitCode, err] : refused) {
        ProgramRun result = run("restore", {number});
        EXPECT_EQ(result.exitCode, exitCode) << number;
        EXPECT_EQ(result.err.substr(0, err.size()), err);
    }
    EXPECT_EQ(dataFiles(), imported);
    EXPECT_EQ(TrestorePoints(data).list().size(), 1u);
}
