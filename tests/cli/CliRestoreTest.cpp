// kt930ctl restore-points and restore as programs: an import undone, then the undo undone.
#include "CliFixture.h"
#include "TrestorePoints.h"
#include <map>

namespace fs = std::filesystem;
using CliRestore = CliFixture;

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
    EXPECT_EQ(outcome(ctl({"restore", "2"})), std::tuple(1, "", "kt930ctl restore: There is no restore point 2; the restore points are 1 to 1.\n"));
    ProgramRun notANumber = ctl({"restore", "1x"});
    EXPECT_EQ(std::pair(notANumber.exitCode, notANumber.err.rfind("kt930ctl restore: \"1x\" is not a restore point number\nUsage: kt930ctl restore N", 0)),
              std::pair(2, std::size_t(0)));
    EXPECT_EQ(dataFiles(), imported);

    EXPECT_EQ(ctl({"restore", "1"}).out, "Restored from restore point 1 (" + importTime + ", replaced by import): mit.dat\n"
                                         "The files this replaced are now restore point 1; kt930ctl restore 1 undoes this.\n");
    EXPECT_EQ(dataFiles(), before);
    EXPECT_EQ(ctl({"restore-points"}).out, "  1  " + timeOf(1) + "  restore 1 (" + importTime + ")  mit.dat\n  2  " + importTime + "  import  mit.dat\n");
    ASSERT_EQ(ctl({"restore", "1"}).exitCode, 0);
    EXPECT_EQ(dataFiles(), imported);
}
