#include "CoreTest.h"
#include "TautosequenceCall.h"
#include "TchecklistReport.h"
#include "TitemList.h"
#include "TlistTexts.h"
#include "TsequenceReport.h"

namespace {
Tautosequence titled(const std::string &title1, const std::string &title2)
{
    Tautosequence sequence;
    Tautosequence::setTitle(sequence.title1, title1);
    Tautosequence::setTitle(sequence.title2, title2);
    return sequence;
}
} // namespace

// What an "A" step runs: the type code picks the container, the number (two digits or
// more, as the panel writes it) the entry; any other text names nothing.
TEST(TautosequenceCall, NamesTheAutosequenceACallRuns)
{
    std::vector<Tautosequence> inspections{titled("VISUAL", "MAINS LEAD"), Tautosequence::unused(),
                                           titled("EARTH BOND", "")};
    std::vector<TuserTester> testers = TuserTester::defaultList();
    testers[1].sequences[11] = titled("", "LOAD TEST");
    const std::vector<std::pair<std::string, std::string>> cases{
        {"PHY03", "Runs: Physical inspection 3 - EARTH BOND"},
        {"PHY01                                    ", "Runs: Physical inspection 1 - VISUAL - MAINS LEAD"},
        {"PHY02", "Runs: Physical inspection 2 - <unused>"},
        {"PHY04", "Runs: Physical inspection 4 (no such autosequence)"},
        {"PHY00", "Runs: PHY00 (no such autosequence)"},
        {"PHY100  ", "Runs: Physical inspection 100 (no such autosequence)"},
        {"PHY3", "Runs: PHY3 (no such autosequence)"},
        {"PHY003", "Runs: PHY003 (no such autosequence)"},
        {"PHY01x", "Runs: PHY01x (no such autosequence)"},
        {"PHY 01", "Runs: PHY 01 (no such autosequence)"},
        {"UT212", "Runs: User tester 2 sequence 12 - LOAD TEST"},
        {"UT101", "Runs: User tester 1 sequence 1"}, // blank titles: nothing after the name
        {"UT913", "Runs: User tester 9 sequence 13 (no such autosequence)"},
        {"PHY", "Runs: PHY (no such autosequence)"},
        {"XYZ07  ", "Runs: XYZ07 (no such autosequence)"},
    };
    for (const auto &[command, text] : cases)
        EXPECT_EQ(TautosequenceCall::runsText(command, inspections, testers), text) << command;
}

// Plain steps as the sequence printout shows them, "A" steps by what they run, and a
// number outside the table as empty cells.
TEST(TchecklistReport, RowsFollowTheStepsAndNameCalls)
{
    TInstrDatabase db;
    TopCodeTable names{{'P', TinstStruct{"P - Pass/Fail", 'P', false, 1}},
                       {'A', TinstStruct{"A - Autosequence", 'A', false, 1024}}};
    TInstrDatabase::setNames(names);
    db[0].assign('A', 'P', "Plug intact?");
    db[1].assign(' ', 'A', "PHY03");
    TTestProc checklist;
    checklist.setTitle("  Annual test\tClass I");
    TitemList(checklist.items).append(2);
    TitemList(checklist.items).append(1);
    TitemList(checklist.items).append(2000);
    const TcategoryMap categories{{'A', "Visual"}};
    const TchecklistReport report =
        TchecklistReport::make(checklist, db, categories, {titled("X", ""), titled("Y", ""), titled("EARTH BOND", "")},
                               TuserTester::defaultList(), 0);
    EXPECT_EQ(report.title, "Annual test Class I");
    EXPECT_EQ(report.date, TsequenceReport::dateText(0));
    EXPECT_EQ(report.rows, (std::vector<std::array<std::string, 3>>{
                               {"", "A - Autosequence", "Runs: Physical inspection 3 - EARTH BOND"},
                               {"Visual", "P - Pass/Fail", "Plug intact?"},
                               {}}));
}

// A typed title is cut at 41 characters, controls become blanks; the list shows it trimmed.
TEST(TTestProc, TitlesAndListRows)
{
    TTestProc checklist;
    checklist.setTitle(std::string(50, 'x'));
    EXPECT_EQ(bytes(checklist.title), std::string(41, 'x') + '\0');
    checklist.setTitle("  Leads\x01");
    EXPECT_EQ(bytes(checklist.title), "  Leads " + std::string(33, ' ') + '\0');
    EXPECT_EQ(TlistTexts::checklistRow(checklist), "Leads");
    checklist.makeUnused();
    EXPECT_EQ(TlistTexts::checklistRow(checklist), "<unused>");
}
