#include "ByteBuilder.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "TempDir.h"
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace ByteBuilder;

namespace {
Message stop(const std::string &caption, const std::string &text)
{
    return {caption, text, MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task};
}
Message exclamation(const std::string &caption, const std::string &text)
{
    return {caption, text, MsgIcon::Exclamation, MsgButtons::Ok, MsgModality::Task};
}

const Message CheckitemBox = stop("Instruction List Error",
                                  "Warning!! Corrupt Instruction List\nPlease restore the list from the KT930.");
const Message InspectionBox = stop("Inspection Data Error", "Warning!! Corrupt Physical Inspection List\n"
                                                            "Please restore the data from the KT930.");
const Message TesterBox = stop("User Tester Sequences Error",
                               "Warning!! One or more corrupt User Tester Sequences detected.\n"
                               "Please restore the data from the KT930.");
const Message ChecklistBox = stop("Checklist Error",
                                  "Warning!! Corrupt Checklist Data\nPlease restore the data from the KT930.");

std::string testerFile(const std::string &name, int sequences = 12)
{
    std::string out = asqHeader("User Tester Autosequences", name, static_cast<std::uint16_t>(sequences));
    for (int i = 0; i < sequences; ++i)
        out += asqRecord("Step " + std::to_string(i), "", 0, positions({static_cast<std::uint16_t>(i + 1)}));
    return out;
}

class DataSet : public ::testing::Test {
protected:
    void writeCompleteSet()
    {
        std::string mit;
        for (int i = 0; i < 10; ++i)
            mit += checkitem('B', 'M', "item");
        dir.write("Data/mit.dat", mit);
        dir.write("Data/inspection.asq",
                  asqHeader("Physical Inspections", "", 1) + asqRecord("Cord", "", 0, positions({1})));
        for (int i = 1; i <= 5; ++i)
            dir.write("Data/usertester" + std::to_string(i) + ".asq", testerFile("Bench " + std::to_string(i)));
        dir.write("Data/testProc.asq", asqHeader("", "", 3) + asqRecord("a", "", 0, {0})
                                           + asqRecord("b", "", 0, {0}) + asqRecord("c", "", 0, {0}));
    }
    TempDir dir;
    RecordingMessageSink sink;
    TdataSet data{dir.path(), sink};
};
}

// A folder where a data file should be is a file that cannot be opened.
TEST_F(DataSet, EmptyFolderOrFoldersForFilesGiveFourBoxesAndDefaultsAndAReloadGivesThemInItsOwnOrder)
{
    TempDir folders;
    for (const char *name : {"mit.dat", "inspection.asq", "usertester1.asq", "usertester2.asq", "usertester3.asq",
                             "usertester4.asq", "usertester5.asq", "testProc.asq"})
        std::filesystem::create_directories(folders / "Data" / name);
    RecordingMessageSink folderSink;
    TdataSet(folders.path(), folderSink).loadAll();
    EXPECT_EQ(folderSink.messages, (std::vector<Message>{CheckitemBox, InspectionBox, TesterBox, ChecklistBox}));

    data.loadAll();
    EXPECT_EQ(sink.messages, (std::vector<Message>{CheckitemBox, InspectionBox, TesterBox, ChecklistBox}));
    ASSERT_EQ(data.checkitems.size(), 1044u);
    EXPECT_TRUE(data.checkitems[1043].isFree());
    ASSERT_EQ(data.inspections.size(), 18u);
    const Tautosequence unused = Tautosequence::unused();
    EXPECT_EQ(std::memcmp(&data.inspections[17], &unused, sizeof unused), 0);
    ASSERT_EQ(data.userTesters.size(), 5u);
    const char *names[] = {"USER TESTER 0", "USER TESTER 2", "USER TESTER 4", "USER TESTER 6", "USER TESTER 8"};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(data.userTesters[i].name, names[i]);
        EXPECT_EQ(data.userTesters[i].sequences.size(), 12u);
    }
    ASSERT_EQ(data.checklists.size(), 500u);
    EXPECT_TRUE(data.checklists.items[499].isUnused());

    sink.messages.clear();
    data.reloadData();
    EXPECT_EQ(sink.messages, (std::vector<Message>{CheckitemBox, ChecklistBox, InspectionBox, TesterBox}));
}

TEST_F(DataSet, CompleteSetLoadsSilentlyAndPadsTheCheckitems)
{
    writeCompleteSet();
    data.loadAll();
    EXPECT_TRUE(sink.messages.empty());
    ASSERT_EQ(data.checkitems.size(), 1044u);
    EXPECT_EQ(data.checkitems[9].commandText(), "item");
    EXPECT_TRUE(data.checkitems[10].isFree());
    ASSERT_EQ(data.inspections.size(), 1u);
    EXPECT_EQ(data.userTesters[4].name, "Bench 5");
    EXPECT_EQ(data.checklists.size(), 3u);
}

// Slots past the table's 1044 are cut at once, so they are not read either: with the
// address space capped a little above what the process uses, a 1 GiB mit.dat still loads.
TEST_F(DataSet, HugeCheckitemFileLoadsItsFirstSlotsWithoutReadingTheRest)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer needs an uncapped address space";
#endif
    writeCompleteSet();
    std::filesystem::resize_file(dir / "Data/mit.dat", std::uintmax_t(1) << 30); // sparse zeros after the items
    const auto loadWithinCap = [this] {
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlim_t cap = pages * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(256) << 20);
        const rlimit limit{cap, cap};
        setrlimit(RLIMIT_AS, &limit);
        data.loadAll();
        const bool loaded = sink.messages.empty() && data.checkitems.size() == 1044u
            && data.checkitems[9].commandText() == "item";
        std::_Exit(loaded ? 0 : 1);
    };
    EXPECT_EXIT(loadWithinCap(), testing::ExitedWithCode(0), "");
}

TEST_F(DataSet, OneMissingOrTruncatedTesterFile)
{
    writeCompleteSet();
    std::filesystem::remove(dir / "Data/usertester3.asq");
    data.loadAll();
    EXPECT_EQ(sink.messages, (std::vector<Message>{TesterBox}));
    EXPECT_EQ(data.userTesters[1].name, "Bench 2");
    EXPECT_EQ(data.userTesters[2].name, "USER TESTER 4");
    EXPECT_EQ(data.userTesters[3].name, "Bench 4");

    sink.messages.clear();
    dir.write("Data/usertester3.asq", testerFile("Cut").substr(0, 300));
    dir.write("Data/usertester5.asq", asqHeader("User Tester Autosequences", "Zero", 0));
    data.loadUserTesters();
    EXPECT_EQ(sink.messages, (std::vector<Message>{TesterBox}));
    EXPECT_EQ(data.userTesters[2].name, "USER TESTER 4");
    EXPECT_EQ(data.userTesters[4].name, "USER TESTER 8");
}

TEST_F(DataSet, LowerCaseDataFolderIsFound)
{
    dir.write("data/inspection.asq", asqHeader("Physical Inspections", "", 1) + asqRecord("x", "", 0, {0}));
    data.loadInspections();
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(data.inspections.size(), 1u);
}

TEST_F(DataSet, BackupWritesThreeKindsButNeverChecklists)
{
    std::filesystem::create_directories(dir / "Data");
    data.loadAll();
    sink.messages.clear();
    data.backup();
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(TempDir::read(dir / "Data/mit.dat").size(), 45936u);
    std::string inspections = asqHeader("Physical Inspections", "", 18);
    for (int i = 0; i < 18; ++i)
        inspections += asqRecord("(UNUSED)          ", std::string(18, ' '), 0, positions({}));
    EXPECT_EQ(TempDir::read(dir / "Data/inspection.asq"), inspections);
    std::string tester = asqHeader("User Tester Autosequences", "USER TESTER 2", 12);
    for (int i = 0; i < 12; ++i)
        tester += asqRecord("(UNUSED)          ", std::string(18, ' '), 0, positions({}));
    EXPECT_EQ(TempDir::read(dir / "Data/usertester2.asq"), tester);
    EXPECT_FALSE(std::filesystem::exists(dir / "Data/testProc.asq"));
}

class ValidateOpCodes : public DataSet {
protected:
    void SetUp() override
    {
        writeCompleteSet();
        data.loadAll();
        data.checkitems[0].assign('B', 'M', "known");
        data.checkitems[1].assign('B', 'Z', "unknown");
        data.checkitems[2].assign('C', 'Y', "unknown too");
    }
};

TEST_F(ValidateOpCodes, RepairsUnknownCodesWithOneWarningAndAllKnownGiveNone)
{
    dir.write("Data/m.in", "M - Measure\nN\n");
    dir.write("Data/y.in", "Y - Yes\nN\n");
    dir.write("Data/z.in", "Z - Zed\nN\n");
    data.validateOpCodes();
    EXPECT_TRUE(sink.messages.empty());
    std::filesystem::remove(dir / "Data/y.in");
    std::filesystem::remove(dir / "Data/z.in");
    dir.write("Data/l.in", "L - Meas. w Limits\nY\n");
    data.validateOpCodes();
    const std::string text =
        "ATTENTION!!\nDO NOT UPLOAD ANY DATA TO THE ANALYZER!!\n\nOne or more checkitems contain "
        "unrecognized op codes.\nThe most likely reason for this is that the data is being\n"
        "downloaded to a PC with an incomplete software configuration.\n\n"
        "Some plug-ins may be missing on this PC or may be out of date. The latest versions of all plug-ins "
        "are available on the manufacturer's web site. Please install them and download the data again.\n\n"
        "A less likely reason is a corrupted master checkitem database in the analyzer. If the problem "
        "remains after the plug-ins have been updated, please contact your nearest sales or service "
        "representative.";
    EXPECT_EQ(sink.messages, (std::vector<Message>{exclamation("UNRECOGNIZED OP CODE", text)}));
    EXPECT_EQ(data.checkitems[1].opCode, 'L'); // the repair itself is the database's, checked there
}

TEST_F(ValidateOpCodes, MissingAndCorruptDefinitionFiles)
{
    data.validateOpCodes();
    dir.write("Data/b.in", "Q\n");
    dir.write("Data/a.in", "M - Measure\nN\n");
    data.validateOpCodes();
    EXPECT_EQ(sink.messages,
              (std::vector<Message>{
                  stop("ERROR!", "Warning!\nCheckitem Database Files Cannot Be Found Or Are Corrupt!\n"
                                 "Please restart program.\nIf this problem persists, contact your software vendor."),
                  stop("ERROR", "An unexpected error occured while processing b.in.\nThe file is corrupt.  "
                                "Please contact your product's distributor immediately.")}));
    EXPECT_EQ(data.checkitems[1].opCode, 'Z'); // stopped before any repair
}
