#include "CoreTest.h"
#include "OpCodeDefinitions.h"
#include "TautoSequenceTypes.h"


TEST(OpCodeHeader, ReadsLetterNameFlagAndListOrderOrIsCorrupt)
{
    // Only an upper-case Y sets the flag; the list order is 1024 without a number.
    const std::pair<std::string, std::string> cases[] = {
        {"M - Measure\r\nY 3\r\n\"a\"\t\"b\"\t\"N\"\r\n", "M M - Measure Y 3"},
        {"P - Pass/Fail\nN 10\n", "P P - Pass/Fail N 10"},
        {"S - Setup\nyes\n", "S S - Setup N 1024"},
        {"E - Empty flag line\n\n", "E E - Empty flag line N 1024"},
    };
    TempDir dir;
    for (const auto &[contents, expected] : cases) {
        const TinstStruct h = OpCodeDefinitions::readHeader(dir.write("x.in", contents));
        EXPECT_EQ(std::string(1, h.opCode) + " " + h.name + (h.yFlag ? " Y " : " N ") + std::to_string(h.listOrder),
                  expected);
    }
    for (const char *contents : {"Q\nY\n", "R - Only one line\n", "T - No line end", ""})
        EXPECT_THROW(OpCodeDefinitions::readHeader(dir.write("x.in", contents)), TopCodeFileCorrupt) << contents;
    EXPECT_THROW(OpCodeDefinitions::readHeader(dir / "missing.in"), TopCodeFileCorrupt);
}

TEST(OpCodeFiles, ReadLinesStripsLineEndsAndSplitsAt1024)
{
    TempDir dir;
    auto file = dir.write("l.in", "one\r\ntwo\n" + std::string(1500, 'x') + "\r\n" + std::string(1024, 'y')
                                      + "\r\n" + std::string(1024, 'z') + "\r" + "\"A\"\n"
                                      + std::string("nul\0rest\n", 9) + "last");
    EXPECT_EQ(OpCodeDefinitions::readLines(file),
              (std::vector<std::string>{"one", "two", std::string(1024, 'x'), std::string(476, 'x'),
                                        std::string(1024, 'y'), std::string(1024, 'z'), "\r\"A\"", "nul", "last"}));
}

// Only *.in files are read, in name order: anything else would be corrupt here.
TEST(OpCodeLoad, FirstFileWinsALetter)
{
    TempDir dir;
    dir.write("1measure.in", "M - Measure\nY\n");
    dir.write("2meter.in", "M - Meter\nN\n");
    dir.write("3pass.in", "P - Pass/Fail\nN\n");
    dir.write("0.inx", "x");
    dir.write("0mit.dat", "x");
    RecordingMessageSink sink;
    TopCodeTable table{{'X', {"X - stale", 'X'}}};
    ASSERT_EQ(OpCodeDefinitions::load(dir.path(), table, sink), 0);
    ASSERT_EQ(table.size(), 2u);
    EXPECT_EQ(table['M'].name + (table['M'].yFlag ? " Y " : " N ") + table['P'].name, "M - Measure Y P - Pass/Fail");
    EXPECT_TRUE(sink.messages.empty());
}

// Missing files in the instruction list wording (the checkitem database's is the data set's,
// checked there); a corrupt file with its full path, then the load throws.
TEST(OpCodeLoad, MissingAndCorruptFilesAreReported)
{
    TempDir dir;
    RecordingMessageSink sink;
    TopCodeTable table;
    EXPECT_EQ(OpCodeDefinitions::load(dir / "none", table, sink, OpCodeDefinitions::Wording::InstructionList), -1);
    dir.write("a.in", "A - Autosequence\nN\n");
    auto bad = dir.write("q.in", "Q\n");
    EXPECT_THROW(OpCodeDefinitions::load(dir.path(), table, sink), TopCodeFileCorrupt);
    EXPECT_EQ(sink.messages, (Messages{{"ERROR!", "Warning!\nInstruction List Files Cannot Be Found Or Are Corrupt!\n"
                                                  "Please restart program.\nIf this problem persists, contact your "
                                                  "software vendor.", MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task},
                                       {"ERROR", "An unexpected error occured while processing " + bad.string()
                                                     + ".\nThe file is corrupt.  Please contact your product's "
                                                       "distributor immediately.",
                                        MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task}}));
}

// The autosequence types of the "A" definition file.
TEST(AutoSequenceTypes, EachLineIsCodeTextAndAWholeCountElseTheListFailsAndTheAFileIsFoundByItsOpCode)
{
    std::vector<TautoSequenceType> types;
    ASSERT_TRUE(
        TautoSequenceTypes::parse({"PHY\tPhysical Inspection\t18", "UT1\tUser Tester 1\t12", "XX\t\t0"}, types));
    EXPECT_EQ(types, (std::vector<TautoSequenceType>{
                         {"PHY", "Physical Inspection", 18}, {"UT1", "User Tester 1", 12}, {"XX", "", 0}}));
    for (const char *line : {"PHY\tPhysical\t18\textra", "PHY\tPhysical", "PHY\tPhysical\t-1", "PHY\tPhysical\t1.5",
                             "PHY\tPhysical\t", "PHY\tPhysical\t12 "})
        EXPECT_FALSE(TautoSequenceTypes::parse({"UT1\tUser Tester 1\t12", line}, types)) << line;

    // The load finds the "A" file by its op code.
    TempDir data;
    data.write("measure.in", "M - Measure\nN 9\nValue\tN\t\n");
    data.write("zcalls.in", "A - Autosequence\nN 0\nPHY\tPhysical Inspection\t18\n");
    ASSERT_TRUE(TautoSequenceTypes::load(data.path(), types));
    EXPECT_EQ(types, (std::vector<TautoSequenceType>{{"PHY", "Physical Inspection", 18}}));
    fs::remove(data / "zcalls.in");
    EXPECT_FALSE(TautoSequenceTypes::load(data.path(), types));
    EXPECT_TRUE(types.empty());
}
