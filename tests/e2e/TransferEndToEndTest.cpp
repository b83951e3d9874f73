// Download, upload and verify jobs against the real simulator, over loopback TCP
// and over a pseudo-terminal: every byte that arrives, in the data set, in its
// files and in the analyzer's memory, is compared with the known set it came from.
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

struct Case {
    Link link;
    std::uint8_t selection;
};

std::vector<std::string> stagesFor(const std::string &verb, std::uint8_t selection)
{
    std::vector<std::string> stages{"Initializing", "Initiating Handshake"};
    for (const auto &[bit, name] : {std::pair{SelectCheckitems, "Checkitems"},
                                    std::pair{SelectAutosequences, "Autosequences"}, std::pair{SelectChecklists, "Checklists"}})
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
    const KnownImages analyzer = KnownDataSet::images(AnalyzerSeed);
    const KnownImages pc = KnownDataSet::images(PcSeed);
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
    if (selection() == SelectAll) { // each get moves the bar through 25, 50 and 90
        const auto &p = run.progress.positions;
        ASSERT_GE(p.size(), 6u);
        EXPECT_EQ(std::vector<int>(p.begin(), p.begin() + 5), (std::vector<int>{25, 50, 90, 25, 50}));
        EXPECT_EQ(std::vector<int>(p.end() - 2, p.end()), (std::vector<int>{90, 100}));
    }
    TdataSet expected({}, run.messages);
    KnownDataSet::fill(expected, selected(analyzer, pc));
    EXPECT_TRUE(KnownDataSet::snapshot(run.set) == KnownDataSet::snapshot(expected)) << "containers differ";
    EXPECT_TRUE(run.file("mit.dat") == selected(analyzer, pc).checkitems);
    const std::vector<TrestorePoint> points = TrestorePoints(run.set.dataFolder()).list();
    ASSERT_EQ(points.size(), 1u);
    EXPECT_EQ(points[0].action, "download");
    EXPECT_TRUE(TempDir::read(points[0].folder / "mit.dat") == pc.checkitems);
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

TEST(DownloadJob, UnknownOpCodesAreMarkedWarnedAboutOnceAndSavedRepaired)
{
    KnownImages memory = KnownDataSet::images(AnalyzerSeed);
    memory.checkitems[0 * 44 + 1] = 'z';
    memory.checkitems[7 * 44 + 1] = 'y';
    SimulatorUnderTest sim(Link::Tcp, memory);
    ASSERT_TRUE(sim.ready());
    JobRun run;
    ASSERT_EQ(run.run(sim.job(Kind::Download)), Outcome::Completed);

    ASSERT_EQ(run.messages.messages.size(), 1u);
    const Message &warning = run.messages.messages[0];
    EXPECT_EQ(warning.caption, "UNRECOGNIZED OP CODE");
    EXPECT_EQ(warning.icon, MsgIcon::Exclamation);
    EXPECT_EQ(warning.buttons, MsgButtons::Ok);
    EXPECT_EQ(warning.text.rfind("ATTENTION!!\nDO NOT UPLOAD ANY DATA TO THE ANALYZER!!\n\n"
                                 "One or more checkitems contain unrecognized op codes.",
                                 0),
              0u);
    // The marker, blank-padded to the full 41 characters of the text field.
    const std::string marker = "**!!**UNRECOGNIZED OP CODE**!!**         ";
    EXPECT_EQ(run.set.checkitems[0].commandText(), marker);
    EXPECT_EQ(run.set.checkitems[7].commandText(), marker);
    const std::string saved = run.file("mit.dat");
    EXPECT_EQ(saved.substr(7 * 44 + 2, 42), marker + '\0');
    EXPECT_EQ(saved.substr(44, 6 * 44), memory.checkitems.substr(44, 6 * 44));
}
