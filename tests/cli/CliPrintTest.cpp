// kt930ctl listing and print-sequence: the checkitem listing, one autosequence or the binder of all used ones as
// a PDF, read back with pdftotext; bad choices are named and print nothing. The page layout is the printer's: here,
// which rows and sequences are printed, their names, setting lines and dates, and the binder's order.
#ifdef KT930_HAS_PRINT
#include "../print/PdfText.h"
#include "ByteBuilder.h"
#include "CliFixture.h"
#include "TInstrDatabase.h"
#include <regex>

namespace fs = std::filesystem;
using namespace ByteBuilder;

namespace {
void writeCheckitems(const fs::path &file, const std::vector<std::pair<std::size_t, TInstr>> &used)
{
    TInstrDatabase db;
    for (const auto &[slot, record] : used)
        db[slot] = record;
    ASSERT_EQ(TInstrDatabase::saveMasterTable(db.slots(), file), 0);
}

const std::string Indent = "    ", Unused = asqRecord("(UNUSED)          ", std::string(18, ' '), 0, positions({}));

struct CliPrintSequenceTest : CliFixture {
    // Two checkitems; inspection 1 of two, and user tester 2's sequence 3 of all 24 items, in use.
    CliPrintSequenceTest()
    {
        temp.write("app/Data/catdes.dat", "B, Electrical\n");
        writeCheckitems(data("mit.dat"), {{0, TInstr('B', 'M', "EB\t0.1")}, {1, TInstr(' ', 'P', "Plug ok?")}});
        temp.write("app/Data/inspection.asq", asqHeader("Physical Inspections", "", 2) +
                                                  asqRecord("EARTH BOND", "CLASS I", 0x13, positions({1, 2})) + Unused);
        writeTesters(true);
    }
    // The five testers' files, all sequences unused but tester 2's third when asked for.
    void writeTesters(bool leakage)
    {
        std::vector<std::uint16_t> full;
        for (int n = 0; n < 24; ++n)
            full.push_back(std::uint16_t(n % 2 + 1));
        for (int tester = 1; tester <= 5; ++tester) {
            std::string file = asqHeader("User Tester Autosequences", "WARD " + std::to_string(tester), 12);
            for (int j = 1; j <= 12; ++j)
                file += leakage && tester == 2 && j == 3 ? asqRecord("LEAKAGE", "TOUCH", 0x1E, full) : Unused;
            temp.write("app/Data/usertester" + std::to_string(tester) + ".asq", file);
        }
    }
    ProgramRun print(std::vector<std::string> choice)
    {
        choice.insert(choice.begin(), "print-sequence");
        choice.insert(choice.end(), {"--pdf", pdf});
        return ctl(choice);
    }
    // Of each printed page, its lines from the fourth (the sequence's name) on.
    std::vector<std::vector<std::string>> printed()
    {
        PdfPages pages = pdfPages(pdf, true);
        for (auto &page : pages)
            page.erase(page.begin(), page.begin() + std::min<std::ptrdiff_t>(3, std::ssize(page)));
        return pages;
    }
    const std::string pdf = (temp / "seq.pdf").string();
};

struct CliListingTest : CliFixture {
    ProgramRun listing(const std::string &pdf) { return ctl({"listing", "--pdf", pdf}); }
    const std::string pdf = (temp / "list.pdf").string();
};
} // namespace

TEST_F(CliPrintSequenceTest, EachChoicePrintsItsSequenceTheBinderEveryUsedOne)
{
    ProgramRun one = print({"--inspection", "1"}); // Qt may add its own notes on stderr
    EXPECT_EQ(std::pair(one.exitCode, one.out), std::pair(0, "Printed 1 autosequence to " + pdf + "\n"));
    EXPECT_TRUE(std::regex_match(pdfPages(pdf, true).at(0).at(0),
                                 std::regex(Indent + "[A-Z][a-z]+ \\d\\d \\d{4} - \\d\\d:\\d\\d:\\d\\d")));
    const auto lines = printed().at(0); // the name, two setting lines, the column header, the rows
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ((std::vector{lines[0], lines[4], lines[5]}),
              (std::vector<std::string>{Indent + "AutoSequence EARTH BOND - CLASS I",
                                        Indent + "1.   Electrical  M - Measure    EB\u00BB0.1",
                                        Indent + "2.               P - Pass/Fail  Plug ok?"}));
    ASSERT_EQ(print({"--tester", "2", "--sequence", "3"}).exitCode, 0);
    std::vector<std::string> tester = printed().at(0);
    EXPECT_EQ(tester.size(), 4u + 24u);
    tester.resize(3);
    EXPECT_EQ(tester, (std::vector<std::string>{Indent + "AutoSequence LEAKAGE - TOUCH", Indent + "Port: 6",
                                                Indent + "Baud Rate: 19200 Baud"}));
    EXPECT_EQ(print({"--all"}).out, "Printed 2 autosequences to " + pdf + "\n");
    PdfPages all = printed();
    for (auto &page : all)
        page.resize(1);
    EXPECT_EQ(all,
              (PdfPages{{Indent + "AutoSequence EARTH BOND - CLASS I"}, {Indent + "AutoSequence LEAKAGE - TOUCH"}}));
}

TEST_F(CliPrintSequenceTest, BadChoicesAreNamedAndPrintNothing)
{
    // After "kt930ctl print-sequence: ".
    const std::string give = "give --pdf FILE and one of", inspections = ": the data set has inspections 1 to 2\n";
    const std::tuple<std::vector<std::string>, int, std::string> cases[] = {
        {{"--inspection", "2"}, 1, "inspection 2: Autosequence is unused. Print operation not initiated.\n"},
        {{"--inspection", "0"}, 2, "--inspection 0" + inspections},
        {{"--inspection", "3"}, 2, "--inspection 3" + inspections},
        {{"--inspection", "x"}, 2, "--inspection x" + inspections},
        {{"--tester", "6", "--sequence", "1"}, 2, "--tester 6: the data set has user testers 1 to 5\n"},
        {{"--tester", "2", "--sequence", "13"}, 2, "--sequence 13: user tester 2 has sequences 1 to 12\n"},
        {{"--tester", "2"}, 2, give},
        {{"--all", "--inspection", "1"}, 2, give},
    };
    for (const auto &[choice, exitCode, errStart] : cases) {
        ProgramRun result = print(choice);
        EXPECT_EQ(
            std::tuple(result.exitCode, result.err.rfind("kt930ctl print-sequence: " + errStart, 0), fs::exists(pdf)),
            std::tuple(exitCode, std::size_t(0), false))
            << result.err;
    }
    fs::create_directory(pdf);
    EXPECT_EQ(outcome(print({"--inspection", "1"})),
              std::tuple(1, "", "kt930ctl print-sequence: " + pdf + " is a folder, not a file\n"));
    EXPECT_TRUE(fs::is_empty(pdf));
    fs::remove(pdf);
    writeTesters(false);
    temp.write("app/Data/inspection.asq", asqHeader("Physical Inspections", "", 1) + Unused);
    EXPECT_EQ(outcome(print({"--all"})),
              std::tuple(1, "", "kt930ctl print-sequence: no autosequence is in use; nothing printed\n"));
    EXPECT_FALSE(fs::exists(pdf));
}

// A file that did not load stops only its own sequences; its message is on stderr (Qt may add its own notes).
TEST_F(CliPrintSequenceTest, OnlySequencesOfAFileThatDidNotLoadAreRefused)
{
    const std::string messages =
                          "Inspection Data Error\nWarning!! Corrupt Physical Inspection List\nPlease restore the data "
                          "from the KT930.\n"
                          "User Tester Sequences Error\nWarning!! One or more corrupt User Tester Sequences detected.\n"
                          "Please restore the data from the KT930.\n",
                      refused = messages + "kt930ctl print-sequence: ",
                      notLoaded = ": its file did not load (see above); nothing printed\n";
    temp.write("app/Data/inspection.asq", "not an autosequence file");
    fs::remove(data("usertester3.asq"));
    const std::tuple<std::vector<std::string>, int, std::string> cases[] = {
        {{"--tester", "2", "--sequence", "3"}, 0, messages},
        {{"--inspection", "1"}, 1, refused + "inspection 1" + notLoaded},
        {{"--tester", "3", "--sequence", "1"}, 1, refused + "user tester 3 sequence 1" + notLoaded},
        {{"--all"}, 0, messages},
    };
    for (const auto &[choice, exitCode, err] : cases) {
        fs::remove(pdf);
        ProgramRun result = print(choice);
        EXPECT_EQ(std::tuple(result.exitCode, result.err.substr(0, err.size()), fs::exists(pdf)),
                  std::tuple(exitCode, err, exitCode == 0));
    }
    EXPECT_EQ(printed().size(), 1u); // --all: user tester 2's sequence alone
}

TEST_F(CliListingTest, PrintsTheEditorsFirstViewOfTheDatabase)
{
    writeCheckitems(data("mit.dat"), {{4, TInstr('E', 'M', "EB\t0\t5")},
                                      {0, TInstr('Q', 'P', "Plug ok?")},
                                      {2, TInstr(' ', 'K', "Caf\xE9 break")},
                                      {3, TInstr(' ', 'A', "PHY01")}, // a checklist step: not in the editor's list
                                      {260, TInstr('A', 'P', "Far away")}}); // beyond the editor's 250 slots

    ProgramRun result = listing(pdf); // Qt may add its own notes on stderr
    EXPECT_EQ(std::pair(result.exitCode, result.out), std::pair(0, "Printed 3 rows to " + pdf + "\n"));
    EXPECT_EQ(pdfPages(pdf, true),
              (PdfPages{{"    KT930pc Instruction Listing", "    No.  Category    Op Code        Command",
                         "    1    Q           P - Pass/Fail  Plug ok?",
                         "    3                K - OK Prompt  Caf\u00E9 break",
                         "    5    Earth bond  M - Measure    EB\u00BB0\u00BB5"}}));
}

TEST_F(CliListingTest, BadInputIsNamedAndFails)
{
    fs::create_directories(temp / "folder.pdf");
    const std::string folder = (temp / "folder.pdf").string(), unwritable = (temp / "absent/list.pdf").string();
    EXPECT_EQ(outcome(listing(folder)),
              std::tuple(1, "", "kt930ctl listing: " + folder + " is a folder, not a file\n"));
    EXPECT_EQ(outcome(listing(unwritable)),
              std::tuple(1, "", "kt930ctl listing: cannot write " + unwritable + ": No such file or directory\n"));
    EXPECT_EQ(outcome(listing("")), std::tuple(1, "", "kt930ctl listing: --pdf needs a file name\n"));
    EXPECT_FALSE(fs::exists(temp / "absent"));
    ProgramRun noPdf = ctl({"listing"});
    EXPECT_EQ(
        std::pair(noPdf.exitCode,
                  noPdf.err.rfind("kt930ctl listing: --pdf FILE is required\nUsage: kt930ctl listing --pdf FILE", 0)),
        std::pair(2, std::size_t(0)));
    writeCheckitems(data("mit.dat"), {{2, TInstr(' ', 'Z', "unknown op")}});
    EXPECT_EQ(outcome(listing(pdf)), std::tuple(1, "", "kt930ctl listing: checkitem 3: Invalid Op Code\n"));
    fs::remove(data("mit.dat"));
    EXPECT_EQ(
        outcome(listing(pdf)),
        std::tuple(
            1, "",
            "Instruction List Error\nWarning!! Corrupt Instruction List\nPlease restore the list from the KT930.\n"));
    EXPECT_FALSE(fs::exists(pdf));
}
#endif
