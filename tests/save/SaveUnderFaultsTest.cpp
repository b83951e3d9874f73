// Saves of the full data set killed at random moments or refused by a full disk:
// every data file stays byte-identical to its old or its new content.
#include "FullDataSet.h"
#include "RecordingMessageSink.h"
#include "SaveUnderFaults.h"
#include "TdataSet.h"
#include "TempDir.h"
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace fs = std::filesystem;

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

TEST(StarvedSave, FullDiskKeepsEveryOldFileAndShowsOneFileErrorEach)
{
    const SaveUnderFaults::Files before = SaveUnderFaults::savedFiles(0);
    TempDir appDir;
    for (const auto &[name, bytes] : before)
        appDir.write("Data/" + name, bytes);
    RecordingMessageSink sink;
    TdataSet set(appDir.path(), sink);
    FullDataSet::fill(set, 1);

    SaveUnderFaults::withFileSizeLimit(0, [&] { set.backup(); });

    std::vector<Message> expected;
    for (const auto &[name, text] : SaveUnderFaults::fileErrorTexts())
        expected.push_back({"File Error", text, MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task});
    EXPECT_EQ(sink.messages, expected);
    for (const auto &[name, bytes] : before)
        EXPECT_EQ(TempDir::read(appDir / "Data" / name), bytes) << name;
    EXPECT_EQ(std::distance(fs::directory_iterator(appDir / "Data"), {}), 7 + 1); // and the lock
}

TEST(StarvedSave, FilesBelowTheLimitAreWrittenAndTheOthersKept)
{
    const SaveUnderFaults::Files after = SaveUnderFaults::savedFiles(1);
    // Between the autosequence files and the larger checkitem database.
    const std::size_t limit = after.at("mit.dat").size() - 1;
    ASSERT_GT(limit, after.at("inspection.asq").size());
    const auto figures = SaveUnderFaults::starveSaves({limit});
    EXPECT_EQ(figures.filesFailed, 1);
    EXPECT_EQ(figures.wrongMessages, 0);
    EXPECT_EQ(figures.changedByFailure, 0);
    EXPECT_EQ(figures.leftovers, 0);
}
