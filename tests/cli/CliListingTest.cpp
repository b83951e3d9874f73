// kt930ctl listing: the checkitem listing as a PDF, read back with pdftotext; the layout is the printer's.
#ifdef KT930_HAS_PRINT
#include "../print/PdfText.h"
#include "CliFixture.h"
#include "TInstrDatabase.h"

namespace fs = std::filesystem;

namespace {
struct CliListingTest : CliFixture {
    void writeCheckitems(const std::vector<std::pair<std::size_t, TInstr>> &used) const
    {
        TInstrDatabase db;
        for (const auto &[slot, record] : used)
            db[slot] = record;
        ASSERT_EQ(TInstrDatabase::saveMasterTable(db.slots(), data("mit.dat")), 0);
    }
    ProgramRun listing(const std::string &pdf) { return ctl({"listing", "--pdf", pdf}); }
    const std::string pdf = (temp / "list.pdf").string();
};
}

TEST_F(CliListingTest, PrintsTheEditorsFirstViewOfTheDatabase)
{
    writeCheckitems({{4, TInstr('E', 'M', "EB\t0\t5")}, {0, TInstr('Q', 'P', "Plug ok?")}, {2, TInstr(' ', 'K', "Caf\xE9 break")},
                     {3, TInstr(' ', 'A', "PHY01")},       // a checklist step: not in the editor's list
                     {260, TInstr('A', 'P', "Far away")}}); // beyond the editor's 250 slots
    ProgramRun result = listing(pdf); // Qt may add its own notes on stderr
    EXPECT_EQ(std::pair(result.exitCode, result.out), std::pair(0, "Printed 3 rows to " + pdf + "\n"));
    EXPECT_EQ(pdfPages(pdf, true), (PdfPages{{"    KT930pc Instruction Listing", "    No.  Category    Op Code        Command",
                                              "    1    Q           P - Pass/Fail  Plug ok?", "    3                K - OK Prompt  Caf\u00E9 break",
                                              "    5    Earth bond  M - Measure    EB\u00BB0\u00BB5"}}));
}

TEST_F(CliListingTest, BadInputIsNamedAndFails)
{
    fs::create_directories(temp / "folder.pdf");
    const std::string folder = (temp / "folder.pdf").string(), unwritable = (temp / "absent/list.pdf").string();
    EXPECT_EQ(outcome(listing(folder)), std::tuple(1, "", "kt930ctl listing: " + folder + " is a folder, not a file\n"));
    EXPECT_EQ(outcome(listing(unwritable)), std::tuple(1, "", "kt930ctl listing: cannot write " + unwritable + ": No such file or directory\n"));
    EXPECT_EQ(outcome(listing("")), std::tuple(1, "", "kt930ctl listing: --pdf needs a file name\n"));
    EXPECT_FALSE(fs::exists(temp / "absent"));
    ProgramRun noPdf = ctl({"listing"});
    EXPECT_EQ(std::pair(noPdf.exitCode, noPdf.err.rfind("kt930ctl listing: --pdf FILE is required\nUsage: kt930ctl listing --pdf FILE", 0)),
              std::pair(2, std::size_t(0)));
    writeCheckitems({{2, TInstr(' ', 'Z', "unknown op")}});
    EXPECT_EQ(outcome(listing(pdf)), std::tuple(1, "", "kt930ctl listing: checkitem 3: Invalid Op Code\n"));
    fs::remove(data("mit.dat"));
    EXPECT_EQ(outcome(listing(pdf)),
              std::tuple(1, "", "Instruction List Error\nWarning!! Corrupt Instruction List\nPlease restore the list from the KT930.\n"));
    EXPECT_FALSE(fs::exists(pdf));
}
#endif
