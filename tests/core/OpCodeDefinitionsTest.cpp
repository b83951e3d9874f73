#include "OpCodeDefinitions.h"
#include "RecordingMessageSink.h"
#include "TempDir.h"
#include <gtest/gtest.h>

namespace {
const char CorruptTail[] = ".\nThe file is corrupt.  Please contact your product's distributor immediately.";
}

TEST(OpCodeHeader, ReadsLetterNameFlagAndListOrder)
{
    const struct {
        std::string contents, name;
        bool yFlag;
        int listOrder;
    } cases[] = {
        {"M - Measure\r\nY 3\r\n\"a\"\t\"b\"\t\"N\"\r\n", "M - Measure", true, 3},
        {"P - Pass/Fail\nN 10\n", "P - Pass/Fail", false, 10},
        {"S - Setup\nyes\n", "S - Setup", false, 1024}, // only an upper-case Y sets the flag
        {"E - Empty flag line\n\n", "E - Empty flag line", false, 1024},
    };
    TempDir dir;
    for (const auto &c : cases) {
        TinstStruct header = OpCodeDefinitions::readHeader(dir.write("x.in", c.contents));
        EXPECT_EQ(header.opCode, c.name[0]) << c.name;
        EXPECT_EQ(header.name, c.name);
        EXPECT_EQ(header.yFlag, c.yFlag) << c.name;
        EXPECT_EQ(header.listOrder, c.listOrder) << c.name;
    }
}

TEST(OpCodeHeader, ShortOrMissingLinesAreCorrupt)
{
    TempDir dir;
    for (const char *contents : {"Q\nY\n", "R - Only one line\n", "T - No line end", ""})
        EXPECT_THROW(OpCodeDefinitions::readHeader(dir.write("x.in", contents)), TopCodeFileCorrupt) << contents;
    EXPECT_THROW(OpCodeDefinitions::readHeader(dir / "missing.in"), TopCodeFileCorrupt);
}

TEST(OpCodeFiles, ListsOnlyDotInFilesSortedByName)
{
    TempDir dir;
    dir.write("b.in", "x");
    dir.write("a.in", "x");
    dir.write("c.inx", "x");
    dir.write("mit.dat", "x");
    auto files = OpCodeDefinitions::listFiles(dir.path());
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0], dir / "a.in");
    EXPECT_EQ(files[1], dir / "b.in");
    EXPECT_TRUE(OpCodeDefinitions::listFiles(dir / "nothing").empty());
}

TEST(OpCodeFiles, ReadLinesStripsLineEndsAndSplitsAt1024)
{
    TempDir dir;
    auto file = dir.write("l.in", "one\r\ntwo\n" + std::string(1500, 'x') + "\r\n" + std::string(1024, 'y')
                                      + "\r\n" + std::string(1024, 'z') + "\r" + "\"A\"\n"
                                      + std::string("nul\0rest\n", 9) + "last");
    auto lines = OpCodeDefinitions::readLines(file);
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "two", std::string(1024, 'x'), std::string(476, 'x'),
                                               std::string(1024, 'y'), std::string(1024, 'z'), "\r\"A\"", "nul",
                                               "last"}));
}

TEST(OpCodeLoad, FirstFileWinsALetter)
{
    TempDir dir;
    dir.write("1measure.in", "M - Measure\nY\n");
    dir.write("2meter.in", "M - Meter\nN\n");
    dir.write("3pass.in", "P - Pass/Fail\nN\n");
    RecordingMessageSink sink;
    TopCodeTable table;
    table['X'] = TinstStruct{"X - stale", 'X', false, 1024};
    ASSERT_EQ(OpCodeDefinitions::load(dir.path(), table, sink), 0);
    ASSERT_EQ(table.size(), 2u);
    EXPECT_EQ(table['M'].name, "M - Measure");
    EXPECT_TRUE(table['M'].yFlag);
    EXPECT_EQ(table['P'].name, "P - Pass/Fail");
    EXPECT_TRUE(sink.messages.empty());
}

// The checkitem database wording is the data set's, checked there.
TEST(OpCodeLoad, ReportsMissingFilesInTheInstructionListWording)
{
    TempDir dir;
    RecordingMessageSink sink;
    TopCodeTable table;
    EXPECT_EQ(OpCodeDefinitions::load(dir.path(), table, sink, OpCodeDefinitions::Wording::InstructionList), -1);
    EXPECT_EQ(sink.messages, (std::vector<Message>{{"ERROR!",
                                                    "Warning!\nInstruction List Files Cannot Be Found Or Are Corrupt!\n"
                                                    "Please restart program.\nIf this problem persists, contact your "
                                                    "software vendor.",
                                                    MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task}}));
}

TEST(OpCodeLoad, CorruptFileIsReportedWithItsFullPathThenThrows)
{
    TempDir dir;
    dir.write("a.in", "A - Autosequence\nN\n");
    auto bad = dir.write("q.in", "Q\n");
    RecordingMessageSink sink;
    TopCodeTable table;
    EXPECT_THROW(OpCodeDefinitions::load(dir.path(), table, sink), TopCodeFileCorrupt);
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0], (Message{"ERROR", "An unexpected error occured while processing " + bad.string()
                                                      + CorruptTail,
                                         MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task}));
}
