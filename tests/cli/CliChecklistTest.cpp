// kt930ctl print-checklist: one checklist or every used one as a PDF read back with pdftotext, a step that
// runs an autosequence named by what it runs; bad choices are named and print nothing.
#ifdef KT930_HAS_PRINT
#include "../print/PdfText.h"
#include "CliFixture.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"

namespace fs = std::filesystem;

namespace {
const std::string Indent = "    ";

struct CliChecklistTest : CliFixture {
    // The demo set, its 38th checkitem an "A" step that runs physical inspection 3, and checklist 5 of it and 2.
    CliChecklistTest()
    {
        temp.write("call.csv", " ,A,PHY03\n");
        EXPECT_EQ(ctl({"import-csv", (temp / "call.csv").string()}).exitCode, 0);
        RecordingMessageSink sink;
        TdataSet data(appDir(), sink);
        data.loadAll();
        data.checklists.items[4].setTitle("Leads");
        data.checklists.items[4].items[0] = 38;
        data.checklists.items[4].items[1] = 2;
        data.checklists.items[4].items[2] = 0;
        EXPECT_TRUE(data.save(TdataSet::Checklists));
    }
    // The pages without their first line, the date.
    static PdfPages undated(PdfPages pages)
    {
        for (auto &page : pages)
            page.erase(page.begin());
        return pages;
    }
};
} // namespace

TEST_F(CliChecklistTest, PrintsOneChecklistOrEveryUsedOnePageEach)
{
    const std::string pdf = (temp / "one.pdf").string();
    const ProgramRun one = ctl({"print-checklist", "--checklist", "5", "--pdf", pdf}); // Qt may add notes on stderr
    EXPECT_EQ(std::pair(one.exitCode, one.out), std::pair(0, "Printed 1 checklist to " + pdf + "\n"));
    EXPECT_EQ(
        undated(pdfPages(pdf, true)),
        (PdfPages{{Indent + "KT930 Plus Safety Analyzer", Indent + "Checklists", Indent + "Checklist: Leads",
                   Indent + "Steps: 2", Indent + "No.  Category           Op Code           Command",
                   Indent + "1.                      A - Autosequence  Runs: Physical inspection 3 - Asset Record - "
                            "Location",
                   Indent + "2.   Visual inspection  P - Pass/Fail     Mains plug free of damage?"}}));

    const std::string all = (temp / "all.pdf").string();
    EXPECT_EQ(ctl({"print-checklist", "--all", "--pdf", all}).out, "Printed 5 checklists to " + all + "\n");
    std::vector<std::string> titles;
    for (const auto &page : undated(pdfPages(all, true)))
        titles.push_back(page.at(2));
    EXPECT_EQ(titles,
              (std::vector<std::string>{Indent + "Checklist: Annual appliance test Class I",
                                        Indent + "Checklist: Annual appliance test Class II",
                                        Indent + "Checklist: Extension lead test",
                                        Indent + "Checklist: Incoming inspection", Indent + "Checklist: Leads"}));
}

TEST_F(CliChecklistTest, BadChoicesAreNamedAndPrintNothing)
{
    const std::string pdf = (temp / "x.pdf").string();
    const std::string prefix = "kt930ctl print-checklist: ";
    const std::vector<std::pair<std::vector<std::string>, std::pair<int, std::string>>> cases{
        {{"--checklist", "0"}, {2, prefix + "--checklist 0: the data set has checklists 1 to 500\n"}},
        {{"--checklist", "501"}, {2, prefix + "--checklist 501: the data set has checklists 1 to 500\n"}},
        {{"--checklist", "5x"}, {2, prefix + "--checklist 5x: the data set has checklists 1 to 500\n"}},
        {{"--checklist", "6"}, {1, prefix + "checklist 6 is unused; nothing printed\n"}},
    };
    for (const auto &[choice, expected] : cases) {
        std::vector<std::string> arguments{"print-checklist", "--pdf", pdf};
        arguments.insert(arguments.end(), choice.begin(), choice.end());
        const ProgramRun result = ctl(arguments);
        EXPECT_EQ(std::pair(result.exitCode, result.err), expected) << choice[1];
    }
    const ProgramRun both = ctl({"print-checklist", "--all", "--checklist", "1", "--pdf", pdf});
    EXPECT_EQ(both.exitCode, 2);
    EXPECT_EQ(both.err.substr(0, both.err.find('\n')), prefix + "give --pdf FILE and one of --checklist N, --all");
    fs::remove(data("testProc.asq"));
    const ProgramRun missing = ctl({"print-checklist", "--all", "--pdf", pdf});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.ends_with(prefix + "testProc.asq did not load (see above); nothing printed\n"))
        << missing.err;
    EXPECT_FALSE(fs::exists(pdf));
}
#endif
