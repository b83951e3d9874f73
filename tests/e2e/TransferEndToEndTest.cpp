// The real download and upload workers against the real simulator, over loopback
// TCP and over a pseudo-terminal: every byte that arrives is compared with the
// known data set it came from.
#include "TransferRun.h"
#include <cstring>
#include <gtest/gtest.h>

namespace {
using Link = SimulatorUnderTest::Link;
constexpr int AnalyzerSeed = 1, PcSeed = 2;

std::vector<std::string> stagesFor(bool upload, std::uint8_t selection)
{
    const char *verb = upload ? "Putting " : "Getting ";
    std::vector<std::string> stages{"Initializing", "Initiating Handshake"};
    if (selection & SelectCheckitems)
        stages.push_back(verb + std::string("Checkitems"));
    if (selection & SelectAutosequences)
        stages.push_back(verb + std::string("Autosequences"));
    if (selection & SelectChecklists)
        stages.push_back(verb + std::string("Checklists"));
    stages.push_back("Completed!");
    return stages;
}

// What the containers hold after a download: the analyzer's sets where selected,
// the PC's own elsewhere.
std::string expectedContainers(std::uint8_t selection)
{
    DataSet expected, analyzer;
    KnownDataSet::fill(expected, PcSeed);
    KnownDataSet::fill(analyzer, AnalyzerSeed);
    if (selection & SelectCheckitems)
        expected.checkitems = analyzer.checkitems;
    if (selection & SelectChecklists)
        expected.checklists = analyzer.checklists;
    if (selection & SelectAutosequences) {
        expected.inspections = analyzer.inspections;
        expected.testers = analyzer.testers;
    }
    return KnownDataSet::snapshot(expected);
}

void checkDownload(Link link, std::uint8_t selection)
{
    const KnownImages memory = KnownDataSet::images(AnalyzerSeed);
    SimulatorUnderTest sim(link, memory);
    ASSERT_TRUE(sim.ready()) << sim.process().log();
    TransferRun run;
    KnownDataSet::fill(run.set, PcSeed);
    auto record = run.downloadRecord(selection);
    sim.aim(record->settings());
    std::memset(record->data.checkitems, 0x5A, sizeof record->data.checkitems);
    std::memset(record->data.checklists, 0x5A, sizeof record->data.checklists);
    std::memset(record->data.autosequences, 0x5A, sizeof record->data.autosequences);

    TdownloadThread worker(&run.context, &run.progress, &run.messages, record.get());
    ASSERT_TRUE(runToEnd(worker));

    EXPECT_TRUE(run.messages.messages.empty()) << run.messages.messages.front().text;
    EXPECT_EQ(run.progress.results, std::vector<TransferResult>{TransferResult::Ok});
    EXPECT_EQ(run.progress.stages, stagesFor(false, selection));
    EXPECT_EQ(run.progress.positions.back(), 100);
    if (selection == SelectAll) { // each get moves the bar through 25, 50 and 90
        const auto &p = run.progress.positions;
        ASSERT_GE(p.size(), 6u);
        EXPECT_EQ(std::vector<int>(p.begin(), p.begin() + 5), (std::vector<int>{25, 50, 90, 25, 50}));
        EXPECT_EQ(std::vector<int>(p.end() - 2, p.end()), (std::vector<int>{90, 100}));
    }
    auto area = [&](std::uint8_t bit, const std::uint8_t *bytes, const std::string &analyzer) {
        return bytesOf(bytes, analyzer.size()) == (selection & bit ? analyzer : std::string(analyzer.size(), '\x5A'));
    };
    EXPECT_TRUE(area(SelectCheckitems, record->data.checkitems, memory.checkitems));
    EXPECT_TRUE(area(SelectChecklists, record->data.checklists, memory.checklists));
    EXPECT_TRUE(area(SelectAutosequences, record->data.autosequences, memory.autosequences));
    EXPECT_TRUE(KnownDataSet::snapshot(run.set) == expectedContainers(selection));
}

void checkUpload(Link link, std::uint8_t selection)
{
    const KnownImages before = KnownDataSet::images(AnalyzerSeed);
    const KnownImages sent = KnownDataSet::images(PcSeed);
    SimulatorUnderTest sim(link, before);
    ASSERT_TRUE(sim.ready()) << sim.process().log();
    TransferRun run;
    KnownDataSet::fill(run.set, PcSeed);
    auto record = run.uploadRecord(selection);
    sim.aim(record->settings());

    TuploadThread worker(&run.context, &run.progress, &run.messages, record.get());
    ASSERT_TRUE(runToEnd(worker));

    EXPECT_TRUE(run.messages.messages.empty()) << run.messages.messages.front().text;
    EXPECT_EQ(run.progress.results, std::vector<TransferResult>{TransferResult::Ok});
    EXPECT_EQ(run.progress.stages, stagesFor(true, selection));
    const KnownImages after = sim.stopAndReadMemory();
    ASSERT_EQ(after.memoryFile().size(), before.memoryFile().size());
    EXPECT_TRUE(after.checkitems == (selection & SelectCheckitems ? sent : before).checkitems);
    EXPECT_TRUE(after.checklists == (selection & SelectChecklists ? sent : before).checklists);
    EXPECT_TRUE(after.autosequences == (selection & SelectAutosequences ? sent : before).autosequences);
}

class TcpTransfer : public ::testing::TestWithParam<std::uint8_t> {};

std::string selectionName(const ::testing::TestParamInfo<std::uint8_t> &info)
{
    switch (info.param) {
    case SelectCheckitems: return "Checkitems";
    case SelectChecklists: return "Checklists";
    case SelectAutosequences: return "Autosequences";
    default: return "All";
    }
}
}

TEST_P(TcpTransfer, DownloadBringsTheAnalyzerMemoryIntoRecordAndContainers)
{
    checkDownload(Link::Tcp, GetParam());
}

TEST_P(TcpTransfer, UploadLeavesExactlyThePackedAreasInTheAnalyzerMemory)
{
    checkUpload(Link::Tcp, GetParam());
}

INSTANTIATE_TEST_SUITE_P(EachSelection, TcpTransfer,
                         ::testing::Values(std::uint8_t(SelectAll), std::uint8_t(SelectCheckitems),
                                           std::uint8_t(SelectChecklists), std::uint8_t(SelectAutosequences)),
                         selectionName);

TEST(PtyTransfer, FullDownloadOverASerialLine)
{
    checkDownload(Link::Pty, SelectAll);
}

TEST(PtyTransfer, FullUploadOverASerialLine)
{
    checkUpload(Link::Pty, SelectAll);
}
