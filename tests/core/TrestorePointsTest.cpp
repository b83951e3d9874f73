#include "TempDir.h"
#include "TrestorePoints.h"
#include <gtest/gtest.h>

namespace fs = std::filesystem;

TEST(RestorePoints, ALinkPlantedAsTheRestoreFolderGetsNoCopiesAndOffersNothingToRestore)
{
    TempDir data, elsewhere;
    data.write("mit.dat", "mine");
    elsewhere.write("20261123-141503-1/mit.dat", "planted");
    elsewhere.write("20261123-141503-1/action", "download\n");
    fs::create_symlink(elsewhere.path(), data / ".restore");
    TrestorePoints points(data.path());
    std::string why;
    EXPECT_FALSE(points.create("import", {"mit.dat"}, why));
    EXPECT_EQ(why, "The restore point folder " + (data / ".restore").string() + " is not a folder of your own.");
    EXPECT_TRUE(points.list().empty());
    EXPECT_FALSE(points.restore(1, why));
    EXPECT_EQ(TempDir::read(data / "mit.dat"), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator(elsewhere.path()), fs::directory_iterator()), 1);
}
