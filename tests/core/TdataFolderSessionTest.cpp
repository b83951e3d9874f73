#include "CoreTest.h"
#include "TdataFolderSession.h"

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
