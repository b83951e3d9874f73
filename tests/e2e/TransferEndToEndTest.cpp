// Download, upload and verify jobs against the real simulator, over loopback TCP and a pseudo-terminal: every byte
// that arrives, in the data set, its files and the analyzer's memory, is compared with the known set it came from.
#include "JobRun.h"
#include "KnownDataSet.h"
#include "SimulatorUnderTest.h"
#include "TransferMessages.h"
#include "TrestorePoints.h"
#include <gtest/gtest.h>

namespace {
using Link = SimulatorUnderTest::Link;
using Kind = TtransferJob::Kind;
using Outcome = TtransferJob::Outcome;
constexpr int AnalyzerSeed = 1, PcSeed = 2;

struct Case { Link link; std::uint8_t selection; };

std::vector<std::string> stagesFor(const std::string &verb, std::uint8_t selection)
{
    std::vector<std::string> stages{"Initializing", "Initiating Handshake"};
    for (const auto &[bit, name] : {std::pair{SelectCheckitems, "Checkitems"},
                                    {SelectAutosequences, "Autosequences"},
                                    {SelectChecklists, "Checklists"}})
        if (selection & bit)
            stages.push_back(verb + name);
    stages.push_back("Completed!");
    return stages;
}

class EndToEnd : public ::testing::TestWithParam<Case> {
protected:
    void SetUp() override { KnownDataSet::fill(run.set, PcSeed); }
    std::uint8_t selection() const { return GetParam().selection; }
    // The areas of `moved` where selected, those of `kept` elsewhere.
    KnownImages selected(const KnownImages &moved, const KnownImages &kept) const
    {
        return {(selection() & SelectCheckitems ? moved : kept).checkitems,
                (selection() & SelectAutosequences ? moved : kept).autosequences,
                (selection() & SelectChecklists ? moved : kept).checklists};
    }
    const KnownImages analyzer = KnownDataSet::images(AnalyzerSeed), pc = KnownDataSet::images(PcSeed);
    JobRun run;
};

std::string caseName(const ::testing::TestParamInfo<Case> &info)
{
    const char *const selections[] = {"", "Checkitems", "Checklists", "", "Autosequences", "", "", "All"};
    return (info.param.link == Link::Tcp ? "Tcp" : "Pty") + std::string(selections[info.param.selection]);
}
}

TEST_P(EndToEnd, DownloadBringsTheSelectedSetsIntoTheDataSetAndSavesItWithARestorePoint)
{
    ASSERT_TRUE(run.set.backup());
    SimulatorUnderTest sim(GetParam().link, analyzer);
    ASSERT_TRUE(sim.ready()) << sim.process().log();
    ASSERT_EQ(run.run(sim.job(Kind::Download, selection())), Outcome::Completed);

    EXPECT_EQ(run.messages.messages, std::vector<Message>{});
    EXPECT_EQ(run.progress.stages, stagesFor("Getting ", selection()));
    const auto &p = run.progress.positions; // each get moves the bar through 25, 50 and 90
    if (selection() == SelectAll) {
        EXPECT_EQ((std::vector{p.at(0), p.at(1), p.at(2), p.at(3), p.at(4), p.at(p.size() - 2), p.back()}),
                  (std::vector{25, 50, 90, 25, 50, 90, 100}));
    }
    TdataSet expected({}, run.messages);
    KnownDataSet::fill(expected, selected(analyzer, pc));
    EXPECT_TRUE(KnownDataSet::snapshot(run.set) == KnownDataSet::snapshot(expected)) << "containers differ";
    EXPECT_TRUE(run.file("mit.dat") == selected(analyzer, pc).checkitems);
    const std::vector<TrestorePoint> points = TrestorePoints(run.set.dataFolder()).list();
    ASSERT_EQ(points.size(), 1u);
    EXPECT_EQ(std::pair(points[0].action, TempDir::read(points[0].folder / "mit.dat") == pc.checkitems),
              std::pair(std::string("download"), true));
}

TEST_P(EndToEnd, UploadLeavesExactlyTheSelectedAreasInTheAnalyzerMemoryAndVerifySeesWhatItHolds)
{
    SimulatorUnderTest sim(GetParam().link, analyzer);
    ASSERT_TRUE(sim.ready()) << sim.process().log();
    ASSERT_EQ(run.run(sim.job(Kind::Upload, selection())), Outcome::Completed);
    EXPECT_EQ(run.messages.messages, std::vector<Message>{});
    EXPECT_EQ(run.progress.stages, stagesFor("Putting ", selection()));

    // Only a full upload leaves nothing for the verify to find.
    const std::string before = KnownDataSet::snapshot(run.set);
    EXPECT_EQ(run.run(sim.job(Kind::Verify)), selection() == SelectAll ? Outcome::Completed : Outcome::Differs)
        << run.difference;
    EXPECT_EQ(run.messages.messages, std::vector<Message>{});
    EXPECT_TRUE(KnownDataSet::snapshot(run.set) == before) << "a verify changed the data set";

    EXPECT_TRUE(sim.stopAndReadMemory().memoryFile() == selected(pc, analyzer).memoryFile());
}

INSTANTIATE_TEST_SUITE_P(EachSelectionAndLink, EndToEnd,
                         ::testing::Values(Case{Link::Tcp, SelectAll}, Case{Link::Tcp, SelectCheckitems},
                                           Case{Link::Tcp, SelectChecklists}, Case{Link::Tcp, SelectAutosequences},
                                           Case{Link::Pty, SelectAll}),
                         caseName);

// The warning's text and the repair are the data set's; here, that a download warns once and saves the marker.
TEST(DownloadJob, UnknownOpCodesAreMarkedWarnedAboutOnceAndSavedRepaired)
{
    KnownImages memory = KnownDataSet::images(AnalyzerSeed);
    memory.checkitems[0 * 44 + 1] = 'z';
    memory.checkitems[7 * 44 + 1] = 'y';
    SimulatorUnderTest sim(Link::Tcp, memory);
    ASSERT_TRUE(sim.ready());
    JobRun run;
    ASSERT_EQ(run.run(sim.job(Kind::Download)), Outcome::Completed);
    const Message warning{"UNRECOGNIZED OP CODE", TdataSet::unrecognizedOpCodeText(), MsgIcon::Exclamation,
                          MsgButtons::Ok, MsgModality::Task};
    EXPECT_EQ(run.messages.messages, std::vector<Message>{warning});
    const std::string marker = "**!!**UNRECOGNIZED OP CODE**!!**" + std::string(9, ' ') + '\0',
                      saved = run.file("mit.dat");
    EXPECT_EQ(saved.substr(2, 42) + saved.substr(7 * 44 + 2, 42), marker + marker);
    EXPECT_EQ(saved.substr(44, 6 * 44), memory.checkitems.substr(44, 6 * 44));
}
