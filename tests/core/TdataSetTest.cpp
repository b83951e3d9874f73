#include "CoreTest.h"
#include "TdataSet.h"

namespace {
Message stop(const std::string &caption, const std::string &text)
{
    return {caption, text, MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task};
}
const Message CheckitemBox = stop("Instruction List Error",
                                  "Warning!! Corrupt Instruction List\nPlease restore the list from the KT930.");
const Message InspectionBox = stop("Inspection Data Error", "Warning!! Corrupt Physical Inspection List\n"
                                                            "Please restore the data from the KT930.");
const Message TesterBox = stop("User Tester Sequences Error", "Warning!! One or more corrupt User Tester Sequences "
                                                              "detected.\nPlease restore the data from the KT930.");
const Message ChecklistBox = stop("Checklist Error",
                                  "Warning!! Corrupt Checklist Data\nPlease restore the data from the KT930.");

// A file of `count` equal records.
std::string asqFile(const std::string &title, const std::string &subtitle, int count, const std::string &title1,
                    const std::vector<std::uint16_t> &items, const std::string &title2 = "")
{
    std::string out = asqHeader(title, subtitle, static_cast<std::uint16_t>(count));
    for (int i = 0; i < count; ++i)
        out += asqRecord(title1, title2, 0, items);
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
        dir.write("Data/inspection.asq", asqFile("Physical Inspections", "", 1, "Cord", positions({1})));
        for (int i = 1; i <= 5; ++i)
            dir.write("Data/usertester" + std::to_string(i) + ".asq",
                      asqFile("User Tester Autosequences", "Bench " + std::to_string(i), 12, "Step", positions({1})));
        dir.write("Data/testProc.asq", asqFile("", "", 3, "a", {0}));
    }
    std::string testerNames() const
    {
        std::string names;
        for (const TuserTester &tester : data.userTesters)
            names += tester.name + "/" + std::to_string(tester.sequences.size()) + " ";
        return names;
    }
    TempDir dir;
    RecordingMessageSink sink;
    TdataSet data{dir.path(), sink};
};
}

// The defaults are checked as a backup writes them; checklists are never written by one.
TEST_F(DataSet, EmptyFolderGivesFourBoxesAndDefaultsAndAReloadGivesThemInItsOwnOrder)
{
    std::filesystem::create_directories(dir / "Data");
    data.loadAll();
    EXPECT_EQ(sink.messages, (Messages{CheckitemBox, InspectionBox, TesterBox, ChecklistBox}));
    EXPECT_EQ(testerNames(), "USER TESTER 0/12 USER TESTER 2/12 USER TESTER 4/12 USER TESTER 6/12 USER TESTER 8/12 ");
    ASSERT_EQ(data.checklists.size(), 500u);
    EXPECT_TRUE(data.checklists.items[499].isUnused());
    sink.messages.clear();
    data.backup();
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(TempDir::read(dir / "Data/mit.dat"), clearedSlots(1044));
    const std::string unused = "(UNUSED)          ", blank(18, ' ');
    EXPECT_EQ(TempDir::read(dir / "Data/inspection.asq"),
              asqFile("Physical Inspections", "", 18, unused, positions({}), blank));
    EXPECT_EQ(TempDir::read(dir / "Data/usertester2.asq"),
              asqFile("User Tester Autosequences", "USER TESTER 2", 12, unused, positions({}), blank));
    EXPECT_FALSE(std::filesystem::exists(dir / "Data/testProc.asq"));
    std::filesystem::remove_all(dir / "Data");
    data.reloadData();
    EXPECT_EQ(sink.messages, (Messages{CheckitemBox, ChecklistBox, InspectionBox, TesterBox}));
}

// Slots past the table's 1044 are cut at once, so they are not read either: with the
// address space capped a little above what the process uses, a 1 GiB mit.dat still loads.
TEST_F(DataSet, CompleteSetInALowerCaseFolderLoadsSilentlyEvenWithAHugeCheckitemFile)
{
    writeCompleteSet();
    std::filesystem::rename(dir / "Data", dir / "data");
    std::filesystem::resize_file(dir / "data/mit.dat", std::uintmax_t(1) << 30); // sparse zeros after the items
    const auto loaded = [this] {
        data.loadAll();
        return sink.messages.empty() && data.checkitems.size() == 1044u && data.checkitems[9].commandText() == "item"
            && data.inspections.size() == 1u && data.userTesters[4].name == "Bench 5" && data.checklists.size() == 3u;
    };
#if defined(__SANITIZE_ADDRESS__)
    EXPECT_TRUE(loaded()); // the sanitizer needs an uncapped address space
#else
    EXPECT_EXIT(exitWithinAddressCap(loaded), testing::ExitedWithCode(0), "");
#endif
}

TEST_F(DataSet, AMissingTruncatedOrEmptyTesterFileGetsTheDefaultTesterOfItsPlace)
{
    writeCompleteSet();
    std::filesystem::remove(dir / "Data/usertester3.asq");
    data.loadAll();
    EXPECT_EQ(sink.messages, (Messages{TesterBox}));
    EXPECT_TRUE(data.checkitems.size() == 1044u && data.checkitems[10].isFree()); // padded with cleared slots
    EXPECT_EQ(testerNames(), "Bench 1/12 Bench 2/12 USER TESTER 4/12 Bench 4/12 Bench 5/12 ");
    dir.write("Data/usertester3.asq", asqFile("User Tester Autosequences", "Cut", 12, "Step", {1}).substr(0, 300));
    dir.write("Data/usertester5.asq", asqHeader("User Tester Autosequences", "Zero", 0));
    data.loadUserTesters();
    EXPECT_EQ(sink.messages, (Messages{TesterBox, TesterBox}));
    EXPECT_EQ(testerNames(), "Bench 1/12 Bench 2/12 USER TESTER 4/12 Bench 4/12 USER TESTER 8/12 ");
}

// Unknown op codes are repaired (by the database, checked there) with one warning; without
// readable definition files nothing is repaired.
TEST_F(DataSet, ValidatingOpCodesRepairsUnknownCodesWithOneWarningOrStopsAtMissingOrCorruptDefinitions)
{
    writeCompleteSet();
    data.loadAll();
    data.checkitems[1].assign('B', 'Z', "unknown");
    data.checkitems[2].assign('C', 'Y', "unknown too");
    data.validateOpCodes();
    dir.write("Data/b.in", "Q\n");
    dir.write("Data/m.in", "M - Measure\nN\n");
    data.validateOpCodes();
    EXPECT_EQ(data.checkitems[1].opCode, 'Z');
    std::filesystem::remove(dir / "Data/b.in");
    dir.write("Data/y.in", "Y - Yes\nN\n");
    dir.write("Data/z.in", "Z - Zed\nN\n");
    data.validateOpCodes();
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
    EXPECT_EQ(sink.messages,
              (Messages{stop("ERROR!", "Warning!\nCheckitem Database Files Cannot Be Found Or Are Corrupt!\n"
                                       "Please restart program.\nIf this problem persists, contact your software "
                                       "vendor."),
                        stop("ERROR", "An unexpected error occured while processing b.in.\nThe file is corrupt.  "
                                      "Please contact your product's distributor immediately."),
                        {"UNRECOGNIZED OP CODE", text, MsgIcon::Exclamation, MsgButtons::Ok, MsgModality::Task}}));
    EXPECT_EQ(data.checkitems[1].opCode, 'L');
}
