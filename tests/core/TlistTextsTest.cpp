#include "CoreTest.h"
#include "TlistTexts.h"
#include "TtypedText.h"

// Blank is not unused: it shows its empty titles. A set setting makes "(UNUSED)" a title again.
TEST(TlistTexts, SequenceRowsTrimTitlesAndMarkUnused)
{
    Tautosequence sequence, blank, unused;
    Tautosequence::setTitle(sequence.title1, "  Earth Bond");
    Tautosequence::setTitle(sequence.title2, "Class I");
    unused.makeUnused();
    std::string rows = TlistTexts::inspectionRow(sequence) + "|" + TlistTexts::testerChild(11, sequence) + "|"
        + TlistTexts::inspectionRow(blank) + "|" + TlistTexts::inspectionRow(unused) + "|"
        + TlistTexts::testerChild(0, unused) + "|";
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
    EXPECT_EQ(TlistTexts::testerRoot(4, named) + "|" + TlistTexts::testerRoot(2, blank) + "|"
                  + TlistTexts::testerRoot(3, repaired),
              "v. WORKSHOP|iii. USER TESTER 3|iv. USER TESTER 8");
    EXPECT_EQ(blank.name, "USER TESTER 3");
}

// Names typed or pasted by a user: inner control characters become blanks, the ends
// are trimmed, and a tester name is upper-cased in Windows-1252 as the titles are.
TEST(TypedName, ControlsBecomeBlanksAndTheEndsAreTrimmed)
{
    const std::pair<std::string, std::string> cases[] = {
        {"Line one\nZ, injected", "Line one Z, injected"},
        {"\t Hipot\r\n", "Hipot"},
        {"A\x7f" "B\x01" "C", "A B C"},
        {std::string("x\0y", 3), "x y"},
        {"\n\t\x7f ", ""},
        {"caf\xE9 \x80", "caf\xE9 \x80"}, // 8-bit letters stay
    };
    for (const auto &[typed, stored] : cases)
        EXPECT_EQ(TtypedText::cleanName(typed), stored) << typed;
    EXPECT_EQ(TlistTexts::testerName("  caf\xE9\tbay\n "), "CAF\xC9 BAY");
    EXPECT_EQ(TlistTexts::testerName("\xFF\x9A" "s\xDF"), "\x9F\x8A" "S\xDF");
}
