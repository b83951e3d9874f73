// kt930ctl restore-points and restore as programs: an import undone, then the undo undone.
#include "ProgramRun.h"
#include "TempDir.h"
#include "TrestorePoints.h"
#include <gtest/gtest.h>
#include <map>

namespace fs = std::filesystem;

TEST(CliRestore, AnImportIsUndoneByteForByteAndTheUndoIsListedAndUndoable)
{
    TempDir temp;
    const fs::path data = temp / "app/Data";
    fs::create_directories(data);
    fs::copy(std::string(KT930_TEST_APPDIR) + "/Data", data, fs::copy_options::recursive);
    auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--appdir", (temp / "app").string()});
        return ProgramRun::run("kt930ctl", std::move(arguments), temp.path());
    };
    auto dataFiles = [&] {
        std::map<fs::path, std::string> files;
        for (const fs::directory_entry &entry : fs::directory_iterator(data))
            if (entry.is_regular_file() && entry.path().filename().string()[0] != '.')
                files[entry.path()] = TempDir::read(entry.path());
        return files;
    };
    auto timeOf = [&](std::size_t number) { return TrestorePoints(data).list().at(number - 1).time; };

    EXPECT_EQ(run({"restore-points"}).out, "There are no restore points in " + data.string() + ".\n");
    const auto before = dataFiles();
    temp.write("in.csv", "E,L,EB\t0\t0.5\t0\t5\n");
    ASSERT_EQ(run({"import-csv", (temp / "in.csv").string()}).exitCode, 0);
    const auto imported = dataFiles();
    const std::string importTime = timeOf(1);
    EXPECT_EQ(run({"restore-points"}).out, "  1  " + importTime + "  import  mit.dat\n");

    const std::pair<std::string, ProgramRun> refused[] = {
        {"2", {1, "", "kt930ctl restore: There is no restore point 2; the restore points are 1 to 1.\n"}},
        {"1x", {2, "", "kt930ctl restore: \"1x\" is not a restore point number\nUsage: kt930ctl restore N"}},
    };
    for (const auto &[number, expected] : refused) {
        ProgramRun result = run({"restore", number});
        EXPECT_EQ(result.exitCode, expected.exitCode) << number;
        EXPECT_EQ(result.err.substr(0, expected.err.size()), expected.err);
    }
    EXPECT_EQ(dataFiles(), imported);

    ProgramRun restored = run({"restore", "1"});
    EXPECT_EQ(restored.out, "Restored from restore point 1 (" + importTime + ", replaced by import): mit.dat\n"
                            "The files this replaced are now restore point 1; kt930ctl restore 1 undoes this.\n");
    EXPECT_EQ(dataFiles(), before);
    EXPECT_EQ(run({"restore-points"}).out, "  1  " + timeOf(1) + "  restore 1 (" + importTime + ")  mit.dat\n"
                                           "  2  " + importTime + "  import  mit.dat\n");
    ASSERT_EQ(run({"restore", "1"}).exitCode, 0);
    EXPECT_EQ(dataFiles(), imported);
}
