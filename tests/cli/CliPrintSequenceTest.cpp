// kt930ctl print-sequence: one autosequence or the binder of all used ones as a
// PDF, read back with pdftotext; bad choices are named and print nothing.
#ifdef KT930_HAS_PRINT
#include "../print/PdfText.h"
#include "ByteBuilder.h"
#include "TempDir.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>

namespace fs = std::filesystem;
using namespace ByteBuilder;

namespace {
const std::string Indent = "    ";

std::string unusedRecord()
{
    return asqRecord("(UNUSED)          ", std::string(18, ' '), 0, positions({}));
}

class CliPrintSequenceTest : public ::testing::Test {
protected:
    CliPrintSequenceTest()
    {
        fs::create_directories(temp / "app");
        fs::copy(std::string(KT930_TEST_APPDIR) + "/Data", temp / "app/Data", fs::copy_options::recursive);
        temp.write("app/Data/catdes.dat", "B, Electrical\n");
        std::string mit = checkitem('B', 'M', "EB\t0.1") + checkitem(' ', 'P', "Plug ok?");
        for (int slot = 2; slot < 1044; ++slot)
            mit += checkitem(0, 0, "");
        temp.write("app/Data/mit.dat", mit);
        temp.write("app/Data/inspection.asq", asqHeader("Physical Inspections", "", 2)
                                                  + asqRecord("EARTH BOND", "CLASS I", 0x13, positions({1, 2}))
                                                  + unusedRecord());
        std::vector<std::uint16_t> full;
        for (int n = 0; n < 24; ++n)
            full.push_back(std::uint16_t(n % 2 + 1));
        for (int tester = 1; tester <= 5; ++tester) {
            std::string file = asqHeader("User Tester Autosequences", "WARD " + std::to_string(tester), 12);
            for (int j = 1; j <= 12; ++j)
                file += tester == 2 && j == 3 ? asqRecord("LEAKAGE", "TOUCH", 0x1E, full) : unusedRecord();
            temp.write("app/Data/usertester" + std::to_string(tester) + ".asq", file);
        }
    }

    ProgramRun print(std::vector<std::string> choice)
    {
        std::vector<std::string> args{"print-sequence"};
        args.insert(args.end(), choice.begin(), choice.end());
        args.insert(args.end(), {"--pdf", pdf(), "--appdir", (temp / "app").string()});
        return ProgramRun::run("kt930ctl", args, temp.path());
    }
    std::string pdf() const { return (temp / "seq.pdf").string(); }
    PdfPages pages() { return pdfPages(pdf(), true); }
    TempDir temp;
};
}

// The page layout is the printer's (tested there): here, which sequences are printed,
// their names, setting lines and dates, and the binder's order.
TEST_F(CliPrintSequenceTest, EachChoicePrintsItsSequenceTheBinderEveryUsedOne)
{
    ProgramRun one = print({"--inspection", "1"});
    ASSERT_EQ(one.exitCode, 0) << one.err;
    EXPECT_EQ(one.out, "Printed 1 autosequence to " + pdf() + "\n");
    auto printed = pages();
    ASSERT_EQ(printed.size(), 1u);
    ASSERT_EQ(printed[0].size(), 9u);
    EXPECT_TRUE(std::regex_match(printed[0][0], std::regex(Indent + "[A-Z][a-z]+ \\d\\d \\d{4} - \\d\\d:\\d\\d:\\d\\d")))
        << printed[0][0];
    EXPECT_EQ(printed[0][3], Indent + "AutoSequence EARTH BOND - CLASS I");
    EXPECT_EQ(printed[0][7], Indent + "1.   Electrical  M - Measure    EB\u00BB0.1");
    EXPECT_EQ(printed[0][8], Indent + "2.               P - Pass/Fail  Plug ok?");

    one = print({"--tester", "2", "--sequence", "3"});
    ASSERT_EQ(one.exitCode, 0) << one.err;
    printed = pages();
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_EQ(std::vector<std::string>(printed[0].begin() + 3, printed[0].begin() + 6),
              (std::vector<std::string>{Indent + "AutoSequence LEAKAGE - TOUCH", Indent + "Port: 6",
                                        Indent + "Baud Rate: 19200 Baud"}));
    EXPECT_EQ(printed[0].size(), 7u + 24u);

    ProgramRun all = print({"--all"});
    ASSERT_EQ(all.exitCode, 0) << all.err;
    EXPECT_EQ(all.out, "Printed 2 autosequences to " + pdf() + "\n");
    printed = pages();
    ASSERT_EQ(printed.size(), 2u);
    EXPECT_EQ(printed[0][3], Indent + "AutoSequence EARTH BOND - CLASS I");
    EXPECT_EQ(printed[1][3], Indent + "AutoSequence LEAKAGE - TOUCH");
}

TEST_F(CliPrintSequenceTest, BadChoicesAreNamedAndPrintNothing)
{
    struct Case {
        std::vector<std::string> choice;
        int exitCode;
        std::string errStart;
    };
    const std::vector<Case> cases{
        {{"--inspection", "2"}, 1,
         "kt930ctl print-sequence: inspection 2: Autosequence is unused. Print operation not initiated.\n"},
        {{"--inspection", "0"}, 2, "kt930ctl print-sequence: --inspection 0: the data set has inspections 1 to 2\n"},
        {{"--inspection", "3"}, 2, "kt930ctl print-sequence: --inspection 3: the data set has inspections 1 to 2\n"},
        {{"--inspection", "x"}, 2, "kt930ctl print-sequence: --inspection x: the data set has inspections 1 to 2\n"},
        {{"--tester", "6", "--sequence", "1"}, 2,
         "kt930ctl print-sequence: --tester 6: the data set has user testers 1 to 5\n"},
        {{"--tester", "2", "--sequence", "13"}, 2,
         "kt930ctl print-sequence: --sequence 13: user tester 2 has sequences 1 to 12\n"},
        {{"--tester", "2"}, 2, "kt930ctl print-sequence: give --pdf FILE and one of"},
        {{"--all", "--inspection", "1"}, 2, "kt930ctl print-sequence: give --pdf FILE and one of"},
    };
    for (const Case &c : cases) {
        ProgramRun result = print(c.choice);
        EXPECT_EQ(result.exitCode, c.exitCode) << c.choice[0];
        EXPECT_EQ(result.err.rfind(c.errStart, 0), 0u) << result.err;
        EXPECT_FALSE(fs::exists(pdf()));
    }

    fs::create_directory(pdf());
    ProgramRun folder = print({"--inspection", "1"});
    EXPECT_EQ(folder.exitCode, 1);
    EXPECT_EQ(folder.err, "kt930ctl print-sequence: " + pdf() + " is a folder, not a file\n");
    EXPECT_TRUE(fs::is_empty(pdf()));
    fs::remove(pdf());

    for (int tester = 1; tester <= 5; ++tester) {
        std::string file = asqHeader("User Tester Autosequences", "WARD", 12);
        for (int j = 1; j <= 12; ++j)
            file += unusedRecord();
        temp.write("app/Data/usertester" + std::to_string(tester) + ".asq", file);
    }
    temp.write("app/Data/inspection.asq", asqHeader("Physical Inspections", "", 1) + unusedRecord());
    ProgramRun none = print({"--all"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.err, "kt930ctl print-sequence: no autosequence is in use; nothing printed\n");
    EXPECT_FALSE(fs::exists(pdf()));
}
// A file that did not load stops only its own sequences; its message is on stderr.
TEST_F(CliPrintSequenceTest, OnlySequencesOfAFileThatDidNotLoadAreRefused)
{
    const std::string messages =
        "Inspection Data Error\nWarning!! Corrupt Physical Inspection List\nPlease restore the data from the KT930.\n"
        "User Tester Sequences Error\nWarning!! One or more corrupt User Tester Sequences detected.\n"
        "Please restore the data from the KT930.\n";
    const std::string refused = messages + "kt930ctl print-sequence: ";
    temp.write("app/Data/inspection.asq", "not an autosequence file");
    fs::remove(temp / "app/Data/usertester3.asq");
    struct Case {
        std::vector<std::string> choice;
        int exitCode;
        std::string err;
    };
    const std::vector<Case> cases{
        {{"--tester", "2", "--sequence", "3"}, 0, messages},
        {{"--inspection", "1"}, 1, refused + "inspection 1: its file did not load (see above); nothing printed\n"},
        {{"--tester", "3", "--sequence", "1"}, 1,
         refused + "user tester 3 sequence 1: its file did not load (see above); nothing printed\n"},
        {{"--all"}, 0, messages},
    };
    for (const Case &c : cases) {
        fs::remove(pdf());
        ProgramRun result = print(c.choice);
        EXPECT_EQ(result.exitCode, c.exitCode) << c.choice[0];
        EXPECT_EQ(result.err.substr(0, c.err.size()), c.err); // Qt may add its own notes
        EXPECT_EQ(fs::exists(pdf()), c.exitCode == 0) << c.choice[0];
    }
    EXPECT_EQ(pages().size(), 1u); // --all: user tester 2's sequence alone
}
#endif
