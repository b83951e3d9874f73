#include "CoreTest.h"
#include "AtomicFile.h"

// A chain of links is followed and kept; a dangling link creates the file it names.
TEST(AtomicWriteTarget, LinksAreFollowedAndKept)
{
    TempDir dir;
    dir.write("Data/mit.dat", "old");
    fs::create_directories(dir / "elsewhere");
    fs::create_symlink("../Data/mit.dat", dir / "elsewhere/first");
    fs::create_symlink("first", dir / "elsewhere/second");
    fs::create_symlink(dir / "Data/new.csv", dir / "elsewhere/dangling");
    ASSERT_EQ(writeFileAtomically(dir / "elsewhere/second", "new"), AtomicWriteResult::Ok);
    ASSERT_EQ(writeFileAtomically(dir / "elsewhere/dangling", "a,b\n"), AtomicWriteResult::Ok);
    EXPECT_EQ(tree(dir.path()), "Data/ Data/mit.dat=new Data/new.csv=a,b\n elsewhere/ elsewhere/dangling->"
                                    + (dir / "Data/new.csv").string() + " elsewhere/first->../Data/mit.dat "
                                    "elsewhere/second->first ");
    EXPECT_EQ(modeOf(dir / "Data/new.csv"), 0600u);
}

// Nothing is written and no temporary file stays behind.
TEST(AtomicWriteTarget, LinkLoopAndFolderAreRefusedAndKept)
{
    TempDir dir;
    fs::create_symlink("b", dir / "a");
    fs::create_symlink("a", dir / "b");
    fs::create_directories(dir / "mit.dat");
    EXPECT_EQ(writeFileAtomically(dir / "a", "x"), AtomicWriteResult::CannotCreate);
    EXPECT_EQ(writeFileAtomically(dir / "mit.dat", "x"), AtomicWriteResult::CannotCreate);
    EXPECT_EQ(tree(dir.path()), "a->b b->a mit.dat/ ");
}

// Only a caller that asks for it (an export to a pipe) writes into a FIFO; a data
// file's save never opens one, so it cannot hang on it.
TEST(AtomicWriteTarget, FifoIsRefusedUnlessInPlaceWritesAreAllowed)
{
    for (InPlaceWrites inPlace : {InPlaceWrites::Refused, InPlaceWrites::Allowed}) {
        TempDir dir;
        auto fifo = dir / "out.csv";
        ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
        int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
        const bool allowed = inPlace == InPlaceWrites::Allowed;
        ASSERT_EQ(writeFileAtomically(fifo, "B,M,text\n", inPlace),
                  allowed ? AtomicWriteResult::Ok : AtomicWriteResult::CannotCreate);
        char buffer[64] = {};
        ssize_t n = ::read(reader, buffer, sizeof buffer);
        ::close(reader);
        EXPECT_EQ(std::string(buffer, n > 0 ? static_cast<std::size_t>(n) : 0), allowed ? "B,M,text\n" : "");
        EXPECT_EQ(tree(dir.path()), "out.csv| ");
    }
}

TEST(AtomicWriteTarget, LinkPlantedByAnotherUserIsRefusedAndAReplacedFileKeepsOwnerGroupAndMode)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "links of another user can only be made by root";
    TempDir dir;
    auto victim = dir.write("victim.conf", "root's");
    fs::create_directories(dir / "Data");
    fs::create_symlink(victim, dir / "Data/usertester5.asq");
    ASSERT_EQ(::lchown((dir / "Data/usertester5.asq").c_str(), 4242, 4242), 0);
    EXPECT_EQ(writeFileAtomically(dir / "Data/usertester5.asq", "x"), AtomicWriteResult::CannotCreate);
    EXPECT_EQ(tree(dir.path()), "Data/ Data/usertester5.asq->" + victim.string() + " victim.conf=root's ");

    auto file = dir.write("Data/usertester1.asq", "old");
    ASSERT_EQ(::chown(file.c_str(), 12345, 12346), 0);
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    ASSERT_EQ(writeFileAtomically(file, "new"), AtomicWriteResult::Ok);
    EXPECT_EQ(TempDir::read(file), "new");
    struct stat st {};
    ASSERT_EQ(::stat(file.c_str(), &st), 0);
    EXPECT_EQ(std::tuple(st.st_uid, st.st_gid, st.st_mode & 07777), std::tuple(12345u, 12346u, 0640u));
}

TEST(AtomicWriteLeftovers, NextSaveRemovesItsOwnStaleTemporaryOnly)
{
    TempDir dir;
    auto target = dir.write("mit.dat", "old");
    dir.write("mit.dat.tmpAb3xYz", "stale");
    dir.write("mit.dat.tmpshort", "not ours");
    dir.write("inspection.asq.tmpAb3xYz", "another file's");
    ASSERT_EQ(writeFileAtomically(target, "new"), AtomicWriteResult::Ok);
    EXPECT_EQ(tree(dir.path()), "inspection.asq.tmpAb3xYz=another file's mit.dat.tmpshort=not ours mit.dat=new ");
}
