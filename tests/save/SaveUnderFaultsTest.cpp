// Saves of the full data set killed at random moments or refused by a full disk:
// every data file stays byte-identical to its old or its new content.
#include "SaveUnderFaults.h"
#include "TempDir.h"
#include <gtest/gtest.h>

TEST(KilledSave, TheNextLoadSeesAWholeOldOrNewSetAndNoTemporary)
{
    const auto figures = SaveUnderFaults::killSaves(KT930_SAVELOOP, 12, 930);
    EXPECT_EQ(figures.kills, 12);
    EXPECT_EQ(figures.filesChecked, 12 * 7);
    EXPECT_EQ(figures.torn, 0);
    EXPECT_EQ(figures.killedBetweenFiles, 0);
    EXPECT_EQ(figures.leftoversAfterKill, 0);
    EXPECT_EQ(figures.leftoversAtEnd, 0);
}

TEST(KilledSave, AFrameSaveKilledAtEachOfItsRenamesLeavesTheOldOrTheNewSet)
{
    TempDir appDir;
    const auto figures = SaveUnderFaults::killAtEveryRename({KT930_SAVELOOP, appDir.path().string(), "--once"},
                                                            appDir.path(), SaveUnderFaults::savedFiles(1));
    EXPECT_GE(figures.kills, 7 + 1); // each file and the intent record
    EXPECT_EQ(figures.mixed, 0);
    EXPECT_EQ(figures.leftovers, 0);
}

// No room at all, then room for the autosequence files but not the larger checkitem database.
TEST(StarvedSave, FilesBelowTheLimitAreWrittenAndTheOthersKeptWithOneFileErrorEach)
{
    const std::size_t mit = SaveUnderFaults::savedFiles(1).at("mit.dat").size();
    ASSERT_GT(mit - 1, SaveUnderFaults::savedFiles(1).at("inspection.asq").size());
    const auto figures = SaveUnderFaults::starveSaves({0, mit - 1});
    EXPECT_EQ(figures.filesFailed, 7 + 1);
    EXPECT_EQ(figures.wrongMessages, 0);
    EXPECT_EQ(figures.changedByFailure, 0);
    EXPECT_EQ(figures.leftovers, 0);
}
