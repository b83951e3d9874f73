#include "TlistTexts.h"
#include "CoreTest.h"
#include "TsequenceReport.h"
#include "TtypedText.h"

// Blank is not unused: it shows its empty titles. A set setting makes "(UNUSED)" a title again.
TEST(TlistTexts, SequenceRowsTrimTitlesAndMarkUnused)
{
    Tautosequence sequence, blank, unused;
    Tautosequence::setTitle(sequence.title1, "  Earth Bond");
    Tautosequence::setTitle(sequence.title2, "Class I");
    unused.makeUnused();
    std::string rows = TlistTexts::inspectionRow(sequence) + "|" + TlistTexts::testerChild(11, sequence) + "|" +
                       TlistTexts::inspectionRow(blank) + "|" + TlistTexts::inspectionRow(unused) + "|" +
                       TlistTexts::testerChild(0, unused) + "|";
    unused.setting = 9;
    EXPECT_EQ(rows + TlistTexts::inspectionRow(unused),
              "Earth Bond - Class I|12. Earth Bond - Class I| - |<unused>|1. <unused>|(UNUSED) - ");
}

// Roman numerals from 1 to 38 and nothing outside; a blank tester is named in memory, a
// repaired name keeps its number.
TEST(TlistTexts, TesterRootNamesBlankTestersInMemory)
{
    std::string all;
    for (int n = -1; n <= 39; ++n)
        all += TlistTexts::romanNumeral(n) + " ";
    EXPECT_EQ(all, "  i ii iii iv v vi vii viii ix x xi xii xiii xiv xv xvi xvii xviii xix xx xxi xxii xxiii xxiv xxv "
                   "xxvi xxvii xxviii xxix xxx xxxi xxxii xxxiii xxxiv xxxv xxxvi xxxvii xxxviii  ");
    TuserTester named{"WORKSHOP", {}}, blank{"   ", {}}, repaired{"USER TESTER 8", {}};
    EXPECT_EQ(TlistTexts::testerRoot(4, named) + "|" + TlistTexts::testerRoot(2, blank) + "|" +
                  TlistTexts::testerRoot(3, repaired),
              "v. WORKSHOP|iii. USER TESTER 3|iv. USER TESTER 8");
    EXPECT_EQ(blank.name, "USER TESTER 3");
}

// Names typed or pasted by a user: inner control characters become blanks, the ends
// are trimmed, and a tester name is upper-cased in Windows-1252 as the titles are.
TEST(TypedName, ControlsBecomeBlanksAndTheEndsAreTrimmed)
{
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"Line one\nZ, injected", "Line one Z, injected"},
        {"\t Hipot\r\n", "Hipot"},
        {"A\x7f" "B\x01" "C", "A B C"},
        {std::string("x\0y", 3), "x y"},
        {"\n\t\x7f ", ""},
        {"caf\xE9 \x80", "caf\xE9 \x80"}, // 8-bit letters stay
    };
    // clang-format on
    for (const auto &[typed, stored] : cases)
        EXPECT_EQ(TtypedText::cleanName(typed), stored) << typed;
    EXPECT_EQ(TlistTexts::testerName("  caf\xE9\tbay\n "), "CAF\xC9 BAY");
    EXPECT_EQ(TlistTexts::testerName("\xFF\x9As\xDF"), "\x9F\x8AS\xDF");
}

// What the autosequence printout is made of: titles, setting, one row per checkitem with the
// names the grids show, and its date.
TEST(SequenceReport, RowsFollowTheItemsWithNamesAndTabMarksPortAndBaudFollowTheSetting)
{
    TInstrDatabase db;
    TInstrDatabase::setNames({{'M', {"M - Measure", 'M'}}, {'P', {"P - Pass/Fail", 'P'}}});
    db[0].assign('B', 'M', "EB\t0.1");
    db[1].assign('C', 'P', "Plug ok?");
    db[2].assign(' ', 'Z', "Unknown op");
    Tautosequence seq;
    Tautosequence::setTitle(seq.title1, "EARTH BOND");
    Tautosequence::setTitle(seq.title2, "");
    const std::uint16_t items[] = {2, 1, 3, 4, 2000, 0, 1}; // 4 deleted: a cleared slot
    std::copy(std::begin(items), std::end(items), seq.items);
    // Port and baud rate come from the setting word; an invalid word reads as unused.
    for (const auto &[setting, port, baudRate] : {std::tuple{0x0B, 3, 4800}, std::tuple{0x3F, 0, 2400}}) {
        seq.setting = std::uint16_t(setting);
        const TsequenceReport report = TsequenceReport::make(seq, db, {{'B', "Electrical"}}, 0);
        EXPECT_EQ(report.title1 + "|" + report.title2, "EARTH BOND|");
        EXPECT_EQ(std::pair(report.port, report.baudRate), std::pair(port, baudRate)) << setting;
        // clang-format off
        EXPECT_EQ(report.rows, (std::vector<std::array<std::string, 3>>{
                                   {"C", "P - Pass/Fail", "Plug ok?"},
                                   {"Electrical", "M - Measure", "EB\xBB" "0.1"},
                                   {"", "", "Unknown op"}, // no definition file
                                   {"<empty>", "", ""},
                                   {"", "", ""}})); // not a checkitem number
        // clang-format on
    }
    TInstrDatabase::clearNames();
    EXPECT_FALSE(TesterSetting::isValid(0x20));
    EXPECT_EQ(TesterSetting::make(0, 3), 0); // no port: no baud rate either
    setenv("TZ", "UTC", 1);
    tzset();
    EXPECT_EQ(TsequenceReport::dateText(1804143302), "March 04 2027 - 06:55:02");
}
