// kt930ctl listing: the checkitem listing as a PDF, read back with pdftotext.
#ifdef KT930_HAS_PRINT
#include "../print/PdfText.h"
#include "TInstrDatabase.h"
#include "TempDir.h"
#include <filesystem>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {
class CliListingTest : public ::testing::Test {
protected:
    CliListingTest()
    {
        fs::create_directories(temp / "app");
        fs::copy(std::string(KT930_TEST_APPDIR) + "/Data", temp / "app/Data", fs::copy_options::recursive);
    }

    void writeCheckitems(const std::vector<std::pair<std::size_t, TInstr>> &used) const
    {
        TInstrDatabase db;
        for (const auto &[slot, record] : used)
            db[slot] = record;
        ASSERT_EQ(TInstrDatabase::saveMasterTable(db.slots(), temp / "app/Data/mit.dat"), 0);
    }
    ProgramRun listing(const std::string &pdf)
    {
        return ProgramRun::run("kt930ctl", {"listing", "--pdf", pdf, "--appdir", (temp / "app").string()},
                               temp.path());
    }

    TempDir temp;
};
}

TEST_F(CliListingTest, PrintsTheEditorsFirstViewOfTheDatabase)
{
    writeCheckitems({{4, TInstr('E', 'M', "EB\t0\t5")},
                     {0, TInstr('Q', 'P', "Plug ok?")},
                     {2, TInstr(' ', 'K', "Caf\xE9 break")},
                     {3, TInstr(' ', 'A', "PHY01")},       // a checklist step: not in the editor's list
                     {260, TInstr('A', 'P', "Far away")}}); // beyond the editor's 250 slots
    ProgramRun result = listing((temp / "list.pdf").string());
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "Printed 3 rows to " + (temp / "list.pdf").string() + "\n");
    EXPECT_EQ(pdfPages(temp / "list.pdf", true),
              (PdfPages{{"    KT930pc Instruction Listing",
                                        "    No.  Category    Op Code        Command",
                                        "    1    Q           P - Pass/Fail  Plug ok?",
                                        "    3                K - OK Prompt  Caf\u00E9 break",
                                        "    5    Earth bond  M - Measure    EB\u00BB0\u00BB5"}}));
}

TEST_F(CliListingTest, BadInputIsNamedAndFails)
{
    fs::create_directories(temp / "folder.pdf");
    const std::string unwritable = (temp / "absent/list.pdf").string(), pdf = (temp / "list.pdf").string();
    const std::pair<std::string, std::string> cases[] = {
        {(temp / "folder.pdf").string(), "kt930ctl listing: " + (temp / "folder.pdf").string() + " is a folder, not a file\n"},
        {unwritable, "kt930ctl listing: cannot write " + unwritable + ": No such file or directory\n"},
        {"", "kt930ctl listing: --pdf needs a file name\n"},
    };
    for (const auto &[file, err] : cases) {
        ProgramRun result = listing(file);
        EXPECT_EQ(result.exitCode, 1) << file;
        EXPECT_EQ(result.err, err);
    }
    EXPECT_FALSE(fs::exists(temp / "absent"));

    ProgramRun noPdf = ProgramRun::run("kt930ctl", {"listing", "--appdir", (temp / "app").string()}, temp.path());
    EXPECT_EQ(noPdf.exitCode, 2);
    EXPECT_EQ(noPdf.err.rfind("kt930ctl listing: --pdf FILE is required\nUsage: kt930ctl listing --pdf FILE", 0), 0u)
        << noPdf.err;

    writeCheckitems({{2, TInstr(' ', 'Z', "unknown op")}});
    ProgramRun unknownOp = listing(pdf);
    EXPECT_EQ(unknownOp.exitCode, 1);
    EXPECT_EQ(unknownOp.err, "kt930ctl listing: checkitem 3: Invalid Op Code\n");

    fs::remove(temp / "app/Data/mit.dat");
    ProgramRun noTable = listing(pdf);
    EXPECT_EQ(noTable.exitCode, 1);
    EXPECT_EQ(noTable.err, "Instruction List Error\nWarning!! Corrupt Instruction List\nPlease restore the list from "
                           "the KT930.\n");
    EXPECT_FALSE(fs::exists(pdf));
}
#endif
