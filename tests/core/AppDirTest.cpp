// Which application folder a program works on, where plug-ins and help come from,
// and the first-start copy of the shipped defaults into a per-user folder.
#include "CoreTest.h"
#include "AppDir.h"

namespace {
class AppDirTest : public ::testing::Test {
protected:
    // An installed layout: <root>/usr/bin and the shipped defaults in <root>/usr/share/kt930pc/Data.
    fs::path install()
    {
        temp.write("usr/share/kt930pc/Data/catdes.dat", "shipped categories");
        temp.write("usr/share/kt930pc/Data/passfail.in", "shipped definitions");
        fs::create_directories(temp / "usr/bin");
        return temp / "usr/bin";
    }
    TappEnvironment environment(const fs::path &executableFolder, std::string xdg = "", std::string override = "")
    {
        return {executableFolder, std::move(override), std::move(xdg), (temp / "home").string()};
    }

    TempDir temp;
};
}

TEST_F(AppDirTest, ApplicationPluginHelpAndDefaultsFoldersFollowTheLayoutAndEnvironment)
{
    install();
    for (const char *spelling : {"Data", "data"})
        fs::create_directories(temp / spelling / "app" / spelling);
    fs::create_directories(temp / "bin");
    const std::string x = (temp / "xdg").string(), own = "| the program's folder holds Data/ and is writable (a "
                                                         "build folder or a portable copy)";
    const std::string installed = "usr/lib/kt930pc/plugins usr/share/kt930pc usr/share/kt930pc/Data | ";
    const std::string perUser = installed + "the program is installed: the per-user data folder in ";
    // Application, plug-in, help and defaults folders (below the test's folder: relative) | reason.
    const struct {
        std::string exe, xdg, override, folders;
    } cases[] = {
        {"Data/app", x, "", "Data/app Data/app/Plugins Data/app  " + own},
        {"data/app", x, "", "data/app data/app/Plugins data/app  " + own},
        {"usr/bin", x, "", "xdg/kt930pc " + perUser + "$XDG_DATA_HOME"},
        // An unset or relative XDG_DATA_HOME is ignored, as the base directory rules say.
        {"usr/bin", "", "", "home/.local/share/kt930pc " + perUser + "~/.local/share"},
        {"usr/bin", "relative/dir", "", "home/.local/share/kt930pc " + perUser + "~/.local/share"},
        // Without HOME there is no per-user folder; the plug-ins are still the installed ones.
        {"usr/bin", "", "no home", "usr/bin " + installed + "the program's folder"},
        {"bin", x, "", "bin bin/Plugins bin  | the program's folder"},
        // The override never moves an installed program's plug-ins.
        {"usr/bin", x, "/srv/bench", "/srv/bench " + installed + "KT930PC_APPDIR is set"},
        {"Data/app", "", "/srv/bench", "/srv/bench /srv/bench/Plugins /srv/bench  | KT930PC_APPDIR is set"},
    };
    const std::string root = temp.path().string() + "/";
    const auto shown = [&](const fs::path &path) {
        const std::string text = path.string();
        return (text.rfind(root, 0) == 0 ? text.substr(root.size()) : text) + " ";
    };
    for (const auto &c : cases) {
        const bool home = c.override != "no home";
        TappEnvironment environment = this->environment(temp / c.exe, c.xdg, home ? c.override : "");
        if (!home)
            environment.home.clear();
        const TappFolders f = TappDir::resolve(environment);
        EXPECT_EQ(shown(f.application) + shown(f.plugins) + shown(f.help) + shown(f.defaults) + "| " + f.reason,
                  c.folders) << c.exe << " " << c.xdg << " " << c.override;
    }
    // Not installed: nothing to seed from, and nothing is made.
    std::string message;
    EXPECT_EQ(TappDir::seed(TappDir::resolve(environment(temp / "bin", x)), message), TappDir::Seeding::Present);
    EXPECT_EQ(message, "");
    EXPECT_FALSE(fs::exists(temp / "bin/Data"));
}

// A folder that cannot be made is reported and left as it was; once it can, the first start
// copies the shipped defaults, writable, and later starts keep the user's data.
TEST_F(AppDirTest, FirstStartCopiesTheShippedDefaultsWritableAndLaterStartsKeepTheUsersData)
{
    const fs::path bin = install();
    fs::permissions(temp / "usr/share/kt930pc/Data/catdes.dat", fs::perms::owner_read | fs::perms::group_read);
    const TappFolders folders = TappDir::resolve(environment(bin, (temp / "xdg").string()));
    temp.write("xdg", "a file where the folder should be");
    std::string message;
    EXPECT_EQ(TappDir::seed(folders, message), TappDir::Seeding::Failed);
    EXPECT_EQ(message.rfind("The data folder " + (temp / "xdg/kt930pc/Data").string() + " could not be created from "
                                + (temp / "usr/share/kt930pc/Data").string() + ": ", 0), 0u) << message;
    EXPECT_EQ(TempDir::read(temp / "xdg"), "a file where the folder should be");

    fs::remove(temp / "xdg");
    ASSERT_EQ(TappDir::seed(folders, message), TappDir::Seeding::Created);
    EXPECT_EQ(message,
              "Your data folder " + (temp / "xdg/kt930pc").string() +
                  " was created from the shipped defaults. Your checkitems, sequences and settings are kept there.");
    EXPECT_EQ(tree(temp / "xdg"), "kt930pc/ kt930pc/Data/ kt930pc/Data/catdes.dat=shipped categories "
                                  "kt930pc/Data/passfail.in=shipped definitions ");
    EXPECT_EQ(modeOf(temp / "xdg/kt930pc/Data/catdes.dat"), 0600u);
    temp.write("xdg/kt930pc/Data/catdes.dat", "the user's categories");
    EXPECT_EQ(TappDir::seed(folders, message), TappDir::Seeding::Present);
    EXPECT_EQ(message, "");
    EXPECT_EQ(TempDir::read(temp / "xdg/kt930pc/Data/catdes.dat"), "the user's categories");
}

TEST_F(AppDirTest, ProgramsSeedingOneNewFolderAtOnceAllSucceedWithTheWholePrivateSet)
{
    const fs::path bin = install();
    for (int round = 0; round < 10; ++round) {
        const fs::path xdg = temp / ("xdg" + std::to_string(round));
        const TappFolders folders = TappDir::resolve(environment(bin, xdg.string()));
        std::vector<TappDir::Seeding> results(8);
        {
            std::vector<std::jthread> programs;
            for (TappDir::Seeding &result : results)
                programs.emplace_back([&] { std::string message; result = TappDir::seed(folders, message); });
        }
        EXPECT_EQ(std::count(results.begin(), results.end(), TappDir::Seeding::Created), 1);
        EXPECT_EQ(std::count(results.begin(), results.end(), TappDir::Seeding::Present), 7);

        EXPECT_EQ(tree(xdg), "kt930pc/ kt930pc/Data/ kt930pc/Data/catdes.dat=shipped categories "
                             "kt930pc/Data/passfail.in=shipped definitions ");
        for (const char *path :
             {"", "/kt930pc", "/kt930pc/Data", "/kt930pc/Data/catdes.dat", "/kt930pc/Data/passfail.in"})
            EXPECT_EQ(modeOf(xdg.string() + path), fs::is_directory(xdg.string() + path) ? 0700u : 0600u) << path;
    }
}
