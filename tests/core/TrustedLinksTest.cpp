// Links are followed only where protected_symlinks would follow them: a link of
// the user's own, or of the owner of the folder that holds it.
#include "CoreTest.h"
#include "RegularFile.h"
#include "TrustedLinks.h"

namespace {
constexpr uid_t Stranger = 4242;

void plant(const fs::path &link, const fs::path &target, uid_t owner)
{
    fs::create_symlink(target, link);
    if (owner != ::geteuid()) {
        ASSERT_EQ(::lchown(link.c_str(), owner, static_cast<gid_t>(-1)), 0);
    }
}
}

TEST(TrustedLinks, FollowsOwnAndFolderOwnersLinksOnlyAtEveryHop)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "links of another user can only be made by root";
    TempDir dir;
    dir.write("real/file", "bytes");
    fs::create_directories(dir / "strangers");
    ASSERT_EQ(::chown((dir / "strangers").c_str(), Stranger, static_cast<gid_t>(-1)), 0);
    plant(dir / "own", "real/file", ::geteuid());
    plant(dir / "planted", dir / "real/file", Stranger);
    plant(dir / "strangers/theirs", "../real/file", Stranger);
    plant(dir / "toPlanted", "planted", ::geteuid());
    plant(dir / "folderLink", "real", ::geteuid());
    plant(dir / "strangers/folder", dir / "real", ::geteuid());
    plant(dir / "strangers/plantedFolder", dir / "real", Stranger + 1);

    const struct {
        const char *path;
        bool followed;
    } cases[] = {
        {"own", true},
        {"planted", false},
        {"strangers/theirs", true},
        {"toPlanted", false},
        {"folderLink/file", true},
        {"folderLink/../own", true},
        {"strangers/folder/file", true},
        {"strangers/plantedFolder/file", false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.path);
        fs::path resolved;
        EXPECT_EQ(resolveTrustedLinks(dir / c.path, resolved), c.followed);
        if (c.followed) {
            EXPECT_EQ(resolved, fs::canonical(dir / c.path));
        }
        std::ifstream in;
        EXPECT_EQ(openRegularFile(in, dir / c.path), c.followed);
    }
    // Not there yet: the name a save would create.
    fs::path resolved;
    ASSERT_TRUE(resolveTrustedLinks(dir / "folderLink/new", resolved));
    EXPECT_EQ(resolved, fs::canonical(dir / "real") / "new");
}
