// The host's choice of data folder: the recent-folders list, the folder opened in the
// host, and the copy behind "Save Data Folder As...".
#include "AppDir.h"
#include "CoreTest.h"
#include "TdataFolderCopy.h"
#include "TrecentFolders.h"

TEST(DataFoldersTest, RecentFoldersKeepTheNewestEightAbsoluteFoldersOnceEach)
{
    TempDir settings;
    const struct {
        std::string file, added, kept;
    } cases[] = {
        {"", "/a", "/a\n"},
        {"/b\n/a\n", "/a/", "/a\n/b\n"}, // moves first, written once
        {"/b/./c\r\n\nrelative\n/b/c/\n", "/d", "/d\n/b/c\n"},
        {"/1\n/2\n/3\n/4\n/5\n/6\n/7\n/8\n/9\n", "/0", "/0\n/1\n/2\n/3\n/4\n/5\n/6\n/7\n"},
        {"/a\n", "/new\nline", "/a\n"},              // kept for this run, never written as two lines
        {std::string(65 * 1024, '/'), "/a", "/a\n"}, // too big to be ours: not read
    };
    for (const auto &c : cases) {
        settings.write("kt930pc/recent-folders", c.file);
        TrecentFolders recent(settings / "kt930pc");
        std::string why;
        EXPECT_TRUE(recent.add(c.added, why)) << why;
        EXPECT_EQ(TempDir::read(settings / "kt930pc/recent-folders"), c.kept) << c.file;
    }
}

TEST(DataFoldersTest, AFolderOpenedInTheHostMovesTheDataButNotThePlugInsOrTheHelp)
{
    const TappFolders f = TappDir::resolve({"/opt/app", "/srv/bench", "", "/home/u", "/srv/customer", ""});
    EXPECT_EQ(f.application.string() + " " + f.plugins.string() + " " + f.help.string() + " " + f.hostSettings.string(),
              "/srv/customer /srv/bench/Plugins /srv/bench /home/u/.config/kt930pc");
    EXPECT_EQ(TappDir::resolve({"/opt/app", "", "", "/home/u", "", "/xdg"}).hostSettings, "/xdg/kt930pc");
}

// The source stays as it was whatever the target; a failed copy leaves nothing behind.
TEST(DataFoldersTest, SaveAsCopiesTheDataFilesAndSettingsIntoANewOrEmptyFolderOnly)
{
    TempDir temp;
    temp.write("a/Data/mit.dat", "checkitems");
    temp.write("a/Data/.restore/1/mit.dat", "older");
    temp.write("a/Data/.session", "123\n");
    temp.write("a/KT930pc.ini", "[COMM]\n");
    // A real folder is copied; links, a FIFO and a dangling link are not part of the set and stop nothing.
    temp.write("a/Data/photos/1.jpg", "jpeg");
    fs::create_symlink(temp / "a/KT930pc.ini", temp / "a/Data/settings");
    fs::create_symlink(temp / "a/Data/photos", temp / "a/Data/album");
    fs::create_symlink(temp / "gone", temp / "a/Data/gone");
    ASSERT_EQ(::mkfifo((temp / "a/Data/pipe").c_str(), 0600), 0);
    temp.write("full/x", "someone's file");
    fs::create_directories(temp / "empty");
    fs::create_symlink(temp / "empty", temp / "link");
    const std::string source = tree(temp / "a");
    const struct {
        std::string target, why;
    } refused[] = {
        {"a", "a is the data folder in use or inside it. Choose a folder elsewhere."},
        {"a/Data/copy", "a/Data/copy is the data folder in use or inside it. Choose a folder elsewhere."},
        {"full", "full already holds files. Choose a new folder or an empty one."},
        {"link", "link is a link. Choose a new folder or an empty one."},
    };
    for (const auto &c : refused) {
        std::string why;
        EXPECT_FALSE(TdataFolderCopy::copy(temp / "a", temp / c.target, why));
        EXPECT_EQ(why, (temp / c.why).string());
    }
    std::string why;
    if (::geteuid() != 0) { // root may write anywhere
        fs::permissions(temp / "empty", fs::perms::owner_read | fs::perms::owner_exec);
        EXPECT_FALSE(TdataFolderCopy::copy(temp / "a", temp / "empty/new", why));
        EXPECT_EQ(why, "No folder can be made in " + (temp / "empty").string() + ": Permission denied.");
        fs::permissions(temp / "empty", fs::perms::owner_all);
    }
    EXPECT_EQ(tree(temp / "a") + tree(temp / "empty"), source);

    for (const char *target : {"empty", "new/b"}) {
        ASSERT_TRUE(TdataFolderCopy::copy(temp / "a", temp / target, why)) << why;
        EXPECT_EQ(tree(temp / target),
                  "Data/ Data/mit.dat=checkitems Data/photos/ Data/photos/1.jpg=jpeg KT930pc.ini=[COMM]\n ");
        EXPECT_EQ(modeOf(temp / target), 0700u);
    }
    EXPECT_EQ(tree(temp / "a"), source);
    EXPECT_EQ(tree(temp / "new"), "b/ b/Data/ b/Data/mit.dat=checkitems b/Data/photos/ b/Data/photos/1.jpg=jpeg "
                                  "b/KT930pc.ini=[COMM]\n ");
}
