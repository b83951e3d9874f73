#include "CoreTest.h"
#include "TlistTexts.h"
#include "TtypedText.h"

TEST(TlistTexts, RomanNumeralsFrom1To38AndNothingOutside)
{
    std::string all;
    for (int n = -1; n <= 39; ++n)
        all += TlistTexts::romanNumeral(n) + " ";
    EXPECT_EQ(all, "  i ii iii iv v vi vii viii ix x xi xii xiii xiv xv xvi xvii xviii xix xx xxi xxii xxiii xxiv xxv "
                   "xxvi xxvii xxviii xxix xxx xxxi xxxii xxxiii xxxiv xxxv xxxvi xxxvii xxxviii  ");
}

TEST(TlistTexts, SequenceRowsTrimTitlesAndMarkUnused)
{
    Tautosequence sequence;
    Tautosequence::setTitle(sequence.title1, "  Earth Bond");
    Tautosequence::setTitle(sequence.title2, "Class I");
    EXPECT_EQ(TlistTexts::inspectionRow(sequence), "Earth Bond - Class I");
    EXPECT_EQ(TlistTexts::testerChild(11, sequence), "12. Earth Bond - Class I");

    Tautosequence blank; // blank is not unused: it shows its empty titles
    EXPECT_EQ(TlistTexts::inspectionRow(blank), " - ");

    Tautosequence unused;
    unused.makeUnused();
    EXPECT_EQ(TlistTexts::inspectionRow(unused), "<unused>");
    EXPECT_EQ(TlistTexts::testerChild(0, unused), "1. <unused>");
    unused.setting = 9; // no longer unused by the record's own test
    EXPECT_EQ(TlistTexts::inspectionRow(unused), "(UNUSED) - ");
}

TEST(TlistTexts, TesterRootNamesBlankTestersInMemory)
{
    TuserTester named{"WORKSHOP", {}};
    EXPECT_EQ(TlistTexts::testerRoot(4, named), "v. WORKSHOP");
    TuserTester blank{"   ", {}};
    EXPECT_EQ(TlistTexts::testerRoot(2, blank), "iii. USER TESTER 3");
    EXPECT_EQ(blank.name, "USER TESTER 3");

    TuserTester repaired{"USER TESTER 8", {}}; // not blank: keeps its number
    EXPECT_EQ(TlistTexts::testerRoot(3, repaired), "iv. USER TESTER 8");
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
