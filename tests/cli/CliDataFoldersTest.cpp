// What kt930ctl adds to the host's data folders: where lists the recent folders, and a
// completed transfer leaves the line the host's overview shows.
#include "CliFixture.h"
#include "LoopbackAddress.h"
#include "TsimProcess.h"

TEST_F(CliFixture, WhereListsTheHostsRecentFoldersAndADownloadRecordsItsLink)
{
    const std::string gone = (temp / "gone").string(), settings = (temp / "config/kt930pc").string();
    temp.write("config/kt930pc/recent-folders", appDir() + "\n" + gone + "\n");
    ::setenv("XDG_CONFIG_HOME", (temp / "config").c_str(), 1);
    const ProgramRun where = ctl({"where"});
    ::unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(where.out.substr(where.out.find("recent")), "recent folders (newest first, from " + settings +
                                                              "/recent-folders):\n  " + appDir() + "\n  " + gone +
                                                              " (not there)\n");

    const std::string at = LoopbackAddress(1, 32).text();
    TsimProcess sim({"--listen", at + ":60601", "--appdir", KT930_TEST_APPDIR, "--memory", (temp / "memory").string()});
    ASSERT_TRUE(sim.waitForLog("ready")) << sim.log();
    ASSERT_EQ(ctl({"download", "--ethernet", at}).exitCode, 0);
    const std::string line = TempDir::read(data(".last-transfer"));
    EXPECT_EQ(line.substr(19), "\tdownload\tEthernet " + at + "\n");
}
