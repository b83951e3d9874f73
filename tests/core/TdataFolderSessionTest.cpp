#include "TdataFolderSession.h"
#include "TempDir.h"
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

TEST(DataFolderSession, ASecondSessionOnTheFolderIsToldWhoHasItUntilTheFirstEnds)
{
    TempDir dir;
    auto first = std::make_unique<TdataFolderSession>(dir.path());
    EXPECT_FALSE(first->inUse());
    EXPECT_EQ(TempDir::read(dir / ".session"), std::to_string(::getpid()) + "\n");

    // Separate open file descriptions conflict as two processes would.
    TdataFolderSession second(dir.path());
    EXPECT_TRUE(second.inUse());
    EXPECT_EQ(second.holder(), long(::getpid()));

    first.reset();
    EXPECT_FALSE(TdataFolderSession(dir.path()).inUse());
}

TEST(DataFolderSession, NoFolderOrAPlantedFifoIsNotInUseAndNeverBlocks)
{
    TempDir dir;
    EXPECT_FALSE(TdataFolderSession(dir / "missing").inUse());
    EXPECT_FALSE(fs::exists(dir / "missing"));

    ASSERT_EQ(::mkfifo((dir / ".session").c_str(), 0600), 0);
    TdataFolderSession session(dir.path());
    EXPECT_FALSE(session.inUse());
    EXPECT_TRUE(fs::is_fifo(dir / ".session"));
}
