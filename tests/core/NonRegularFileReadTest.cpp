// A folder, a FIFO without a writer (opening it would block) or a device that never ends
// where a data file should be cannot be opened. Every reader opens through openRegularFile;
// the data set is the one wiring checked.
#include "CoreTest.h"
#include "RegularFile.h"
#include "TdataFolderSession.h"
#include "TdataSet.h"

TEST(NonRegularFile, CannotBeOpenedAndTheDataSetTakesItAsCorrupt)
{
    TempDir dir;
    fs::create_directories(dir / "Data/mit.dat");
    ASSERT_EQ(::mkfifo((dir / "Data/inspection.asq").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", dir / "Data/testProc.asq");
    for (const fs::path &target : {dir / "Data/mit.dat", dir / "Data/inspection.asq", dir / "Data/testProc.asq"}) {
        std::ifstream in;
        EXPECT_FALSE(openRegularFile(in, target)) << target;
    }
    RecordingMessageSink sink;
    TdataSet(dir.path(), sink).loadAll();
    std::string captions;
    for (const Message &message : sink.messages)
        captions += message.caption + "|";
    EXPECT_EQ(captions, "Instruction List Error|Inspection Data Error|User Tester Sequences Error|Checklist Error|");
}

TEST(DataFolderSession, ASecondSessionIsToldWhoHasTheFolderAndAPlantedFifoNeverBlocks)
{
    TempDir dir;
    std::optional<TdataFolderSession> first(std::in_place, dir.path());
    EXPECT_FALSE(first->inUse());
    // A second open file description conflicts as a second process would.
    TdataFolderSession second(dir.path());
    EXPECT_TRUE(second.inUse());
    EXPECT_EQ(second.holder(), long(::getpid()));
    first.reset();
    EXPECT_FALSE(TdataFolderSession(dir.path()).inUse());

    TempDir planted;
    ASSERT_EQ(::mkfifo((planted / ".session").c_str(), 0600), 0);
    EXPECT_FALSE(TdataFolderSession(planted.path()).inUse());
}
