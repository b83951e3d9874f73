#include "TdataSetComparison.h"
#include "CoreTest.h"
#include "TcommandFields.h"
#include "TdataSet.h"
#include "TitemList.h"

namespace {
// Two equal sets: default containers, 18 unused inspections, category B named.
struct Sides {
    RecordingMessageSink sink;
    TdataSet from{"/nonexistent", sink}, to{"/nonexistent", sink};
    TcategoryMap fromNames{{'B', "Cord sets"}}, toNames{{'B', "Cord sets"}};
    Sides() { from.inspections = to.inspections = std::vector(18, Tautosequence::unused()); }
};

std::string linesOf(const TdataSetComparison &comparison)
{
    std::string text;
    for (const TdataSetDifference &difference : comparison.differences())
        text += difference.line() + "\n";
    return text + comparison.summary();
}
} // namespace

// Each row changes one thing; padding after a command and names the other side lacks are no difference.
TEST(TdataSetComparison, NamesEachDifferenceInTheFramesWords)
{
    const TopCodeTable opCodes{{'L', {"L - Meas. w Limits", 'L'}}, {'K', {"K - OK Prompt", 'K'}}};
    const std::vector<std::pair<std::function<void(Sides &)>, std::string>> table{
        {[](Sides &s) {
             s.to.checkitems[1] = TInstr('E', 'K', "Hi   "), s.from.checkitems[1] = TInstr('E', 'K', "Hi");
             s.from.checkitems[38] = TInstr('E', 'L', "EB\t0\t0.1\t0\t5");
             s.to.checkitems[38] = TInstr(' ', 'K', "Switch the analyzer OFF");
             s.to.checkitems[39] = TInstr('A', 'Z', "x");
         },
         "checkitem 39: \"L - Meas. w Limits\" EB\2730\2730.1\2730\2735 -> \"K - OK Prompt\" Switch the analyzer OFF\n"
         "checkitem 39 category: E -> (none)\ncheckitem 40: (none) -> (unknown op code Z) x\n"
         "3 differences (checkitems 3)"},
        {[](Sides &s) {
             Tautosequence::setTitle(s.from.inspections[3].title1, "EARTH BOND");
             s.to.inspections[0].setting = TesterSetting::make(2, 2);
             s.to.inspections.push_back(Tautosequence());
         },
         "inspection 1 tester port: (none) -> port 2 at 9600 baud\ninspection 4 title 1: \"EARTH BOND\" -> "
         "\"(UNUSED)\"\n"
         "inspection 19: (none) -> \" - \"\n3 differences (inspections 3)"},
        {[](Sides &s) {
             TitemList(s.from.userTesters[1].sequences[4].items).assignFileItems({12, 15, 16});
             TitemList(s.to.userTesters[1].sequences[4].items).assignFileItems({12, 16});
             s.to.userTesters[2].name = "FIELD 2";
             s.to.userTesters.pop_back();
         },
         "tester 2 sequence 5 items: 12 15 16 -> 12 16\ntester 3 name: \"User Tester #2\" -> \"FIELD 2\"\n"
         "tester 5: \"User Tester #4\" -> (none)\n3 differences (user testers 3)"},
        {[](Sides &s) {
             s.to.checklists.items[6].makeUnused();
             s.from.checklists.items[6].items[0] = 3;
             s.toNames.erase('B');
             s.toNames['C'] = "Leads";
         },
         "checklist 7: \"\": 3 -> \"(UNUSED)\"\ncategory B: \"Cord sets\" -> (none)\ncategory C: (none) -> \"Leads\"\n"
         "3 differences (checklists 1, categories 2)"},
    };
    for (const auto &[change, expected] : table) {
        Sides sides;
        change(sides);
        EXPECT_EQ(linesOf(TdataSetComparison({sides.from, &sides.fromNames}, {sides.to, &sides.toNames}, opCodes)),
                  expected);
    }
    Sides analyzer; // holds no category names
    EXPECT_EQ(linesOf(TdataSetComparison({analyzer.from, &analyzer.fromNames}, {analyzer.to, nullptr}, opCodes)),
              "No differences");
}

// Values named by the fields of the definition files; a command that does not fit says why, after the values before.
TEST(TcommandFields, NamesValuesOrSaysWhyTheCommandDoesNotFit)
{
    TcommandFields fields;
    fields.setFields('L', {"\"Test (EB/IR/LC)\"\t\"\"\t\"U\"", "\"Low limit\"\t\"ohm\"\t\"F0,9999\"",
                           "\"Test voltage\"\t\"V\"\t\"N0,1000\""});
    fields.setFields('X', {"\"Broken\"\t\"N\""});
    fields.setAutosequenceTypes({{"PHY", "Physical Inspection", 18}});
    const std::vector<std::pair<TInstr, std::string>> table{
        {{'E', 'L', "eb\t0.5\t250   "}, "Test (EB/IR/LC)=EB, Low limit=0.5 ohm, Test voltage=250 V|"},
        {{'E', 'L', "EB\t1\t2.5"}, "Test (EB/IR/LC)=EB, Low limit=1 ohm|\"2.5\" is not a whole number (Test voltage)"},
        {{'E', 'L', "EB\t1\t2\t3"}, "Test (EB/IR/LC)=EB, Low limit=1 ohm, Test voltage=2 V|4 values for 3 fields"},
        {{'E', 'X', "1"}, "|a field line of the definition file of op code X breaks the grammar"},
        {{'E', 'Q', "1"}, "|no definition file defines op code Q"},
        {{'E', 'A', "PHY03"}, "Autosequence Type=Physical Inspection, Number=3|"},
        {{'E', 'A', "PHY19"}, "Autosequence Type=Physical Inspection|\"19\" is no number from 01 to 18"},
        {{'E', 'A', "PHY3"}, "Autosequence Type=Physical Inspection|\"3\" is no number from 01 to 18"},
    };
    for (const auto &[record, expected] : table) {
        const TnamedCommand named = fields.name(record);
        EXPECT_EQ(named.text() + "|" + named.misfit, expected) << record.commandText();
    }
}
