// Every reader of the data set treats a folder, a FIFO or a device where a
// data file should be as a file that cannot be opened.
#include "CoreTest.h"
#include "CategoryDescriptors.h"
#include "OpCodeDefinitions.h"
#include "TInstrDatabase.h"
#include "autosequenceFileStructs.h"

namespace {
// Not a regular file: a folder, a FIFO without a writer (opening it would
// block), and a device that never ends.
std::vector<fs::path> oddTargets(const TempDir &dir)
{
    fs::create_directories(dir / "folder");
    ::mkfifo((dir / "fifo").c_str(), 0600);
    return {dir / "folder", dir / "fifo", "/dev/zero"};
}
}

TEST(NonRegularFile, EveryReaderGivesCannotOpen)
{
    TempDir dir;
    for (const fs::path &target : oddTargets(dir)) {
        SCOPED_TRACE(target);
        std::vector<TInstr> table(3);
        EXPECT_EQ(TInstrDatabase::loadMasterTable(table, target), -1);
        EXPECT_EQ(table.size(), 3u);
        TInstrDatabase db;
        EXPECT_EQ(db.importText(target), -1);
        TcategoryMap map{{'B', "kept"}};
        EXPECT_EQ(CategoryDescriptors::load(target, map), -1);
        EXPECT_EQ(map.size(), 1u);
        TautosequenceFile asq;
        EXPECT_EQ(asq.read(target), -1);
        EXPECT_THROW(OpCodeDefinitions::readHeader(target), TopCodeFileCorrupt);
        EXPECT_THROW(OpCodeDefinitions::readLines(target), TopCodeFileCorrupt);
    }
}
