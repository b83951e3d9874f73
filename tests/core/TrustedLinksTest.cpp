// Links are followed only where protected_symlinks would follow them: a link of
// the user's own, or of the owner of the folder that holds it.
#include "CoreTest.h"
#include "RegularFile.h"
#include "TrustedLinks.h"

TEST(TrustedLinks, FollowsOwnAndFolderOwnersLinksOnlyAtEveryHop)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "links of another user can only be made by root";
    TempDir dir;
    const fs::path root = fs::canonical(dir.path());
    dir.write("real/file", "bytes");
    fs::create_directories(dir / "strangers");
    const uid_t me = ::geteuid(), stranger = 4242;
    ASSERT_EQ(::chown((dir / "strangers").c_str(), stranger, gid_t(-1)), 0);
    const std::string real = (dir / "real").string();
    for (const auto &[link, target, owner] :
         {std::tuple{"own", std::string("real/file"), me}, {"planted", real + "/file", stranger},
          {"strangers/theirs", "../real/file", stranger}, {"toPlanted", "planted", me}, {"folderLink", "real", me},
          {"strangers/folder", real, me}, {"strangers/plantedFolder", real, stranger + 1}}) {
        fs::create_symlink(target, dir / link);
        ASSERT_EQ(::lchown((dir / link).c_str(), owner, gid_t(-1)), 0);
    }
    // Where each name resolves, and whether it opens; a name not there yet is where a save would create it.
    std::string shown;
    for (const char *path : {"own", "planted", "strangers/theirs", "toPlanted", "folderLink/file", "folderLink/../own",
                             "strangers/folder/file", "strangers/plantedFolder/file", "folderLink/new"}) {
        fs::path resolved;
        std::ifstream in;
        shown += std::string(path) + (resolveTrustedLinks(dir / path, resolved)
                                          ? " > " + resolved.lexically_relative(root).string() : " refused")
            + (openRegularFile(in, dir / path) ? ", opened\n" : "\n");
    }
    EXPECT_EQ(shown, "own > real/file, opened\nplanted refused\nstrangers/theirs > real/file, opened\n"
                     "toPlanted refused\nfolderLink/file > real/file, opened\nfolderLink/../own > real/file, opened\n"
                     "strangers/folder/file > real/file, opened\nstrangers/plantedFolder/file refused\n"
                     "folderLink/new > real/new\n");
}
