// The host's choice of data folder: the recent-folders list, the copy behind "Save Data
// Folder As...", the folder opened in the host and the record of the last transfer.
#include "AppDir.h"
#include "CoreTest.h"
#include "TdataFolderCopy.h"
#include "TlastTransfer.h"
#include "TrecentFolders.h"

namespace {
std::string lines(const std::vector<fs::path> &folders)
{
    std::string text;
    for (const fs::path &folder : folders)
        text += folder.string() + "\n";
    return text;
}
} // namespace

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
        {"/a\n", "/new\nline", "/a\n"}, // kept for this run, never written as two lines
    };
    for (const auto &c : cases) {
        settings.write("kt930pc/recent-folders", c.file);
        TrecentFolders recent(settings / "kt930pc");
        std::string why;
        EXPECT_TRUE(recent.add(c.added, why)) << why;
        EXPECT_EQ(TempDir::read(settings / "kt930pc/recent-folders"), c.kept) << c.file;
        EXPECT_EQ(lines(TrecentFolders(settings / "kt930pc").folders()), c.kept);
    }
    fs::remove_all(settings / "kt930pc");
    ASSERT_EQ(::mkfifo((settings / "kt930pc").c_str(), 0600), 0); // neither read nor written, never blocks
    std::string why;
    TrecentFolders fifo(settings / "kt930pc");
    EXPECT_FALSE(fifo.add("/a", why));
    EXPECT_EQ(std::pair(lines(fifo.folders()), why),
              std::pair(std::string("/a\n"),
                        "The folder " + (settings / "kt930pc").string() + " could not be made: Not a directory."));
}

TEST(DataFoldersTest, AFolderOpenedInTheHostMovesTheDataButNotThePlugInsOrTheHelp)
{
    TappEnvironment environment{"/opt/app", "/srv/bench", "", "/home/u", "/srv/customer", ""};
    const TappFolders folders = TappDir::resolve(environment);
    EXPECT_EQ(folders.application.string() + " " + folders.plugins.string() + " " + folders.help.string() + " " +
                  folders.hostSettings.string() + " | " + folders.reason,
              "/srv/customer /srv/bench/Plugins /srv/bench /home/u/.config/kt930pc | it was opened in kt930pc (File > "
              "Open Data Folder)");
    environment.xdgConfigHome = "/xdg";
    EXPECT_EQ(TappDir::resolve(environment).hostSettings, "/xdg/kt930pc");
}

// The source stays as it was whatever the target; a failed copy leaves nothing behind.
TEST(DataFoldersTest, SaveAsCopiesTheDataFilesAndSettingsIntoANewOrEmptyFolderOnly)
{
    TempDir temp;
    temp.write("a/Data/mit.dat", "checkitems");
    temp.write("a/Data/.restore/1/mit.dat", "older");
    temp.write("a/Data/.session", "123\n");
    temp.write("a/KT930pc.ini", "[COMM]\n");
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
        {"full/x", "full/x already holds files. Choose a new folder or an empty one."},
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
        EXPECT_EQ(tree(temp / target), "Data/ Data/mit.dat=checkitems KT930pc.ini=[COMM]\n ");
        EXPECT_EQ(modeOf(temp / target), 0700u);
    }
    EXPECT_EQ(tree(temp / "a"), source);
    EXPECT_EQ(tree(temp / "new"), "b/ b/Data/ b/Data/mit.dat=checkitems b/KT930pc.ini=[COMM]\n ");
}

TEST(DataFoldersTest, TheLastTransferIsOneLineOfTimeActionAndLink)
{
    TempDir data;
    EXPECT_FALSE(TlastTransfer::read(data.path()));
    ASSERT_TRUE(TlastTransfer::record(data.path(), "upload", TlastTransfer::linkText(1, 0, {127, 77, 77, 300})));
    const std::string line = TempDir::read(data / TlastTransfer::FileName);
    EXPECT_EQ(line.substr(19), "\tupload\tEthernet 127.77.77.44\n");
    const auto read = TlastTransfer::read(data.path());
    EXPECT_EQ(read->time + "|" + read->action + "|" + read->link, line.substr(0, 19) + "|upload|Ethernet 127.77.77.44");
    EXPECT_EQ(TlastTransfer::linkText(2, 3, {}) + TlastTransfer::linkText(0, 0, {}), "serial COM3USB");
}
