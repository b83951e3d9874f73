#include "CoreTest.h"
#include "CategoryDescriptors.h"
#include "FieldSpec.h"

// The rest of a line past 4095 characters is read as the next line; a line ends at a NUL.
TEST(CategoryDescriptors, ParsesLetterCommaText)
{
    TempDir dir;
    auto file = dir.write("catdes.dat", "B, Electrical tests\r\nC,No blank\nD ,  Blank before comma\nE, \n"
                                        "not a category line\n\nG, " + std::string(4092, 'x') + "H, Cables\n"
                                        + std::string("I, Doors\0junk\n", 14) + "F, Last without line end");
    TcategoryMap map{{'Z', "stale"}};
    ASSERT_EQ(CategoryDescriptors::load(file, map), 0);
    EXPECT_EQ(map, (TcategoryMap{{'B', "Electrical tests"}, {'C', "No blank"}, {'D', "Blank before comma"}, {'E', ""},
                                 {'F', "Last without line end"}, {'G', std::string(4092, 'x')}, {'H', "Cables"},
                                 {'I', "Doors"}}));
    EXPECT_EQ(CategoryDescriptors::load(dir / "missing.dat", map), -1);
}

// Only named letters A to Z are saved, in key order, with their names cleaned as typed names are.
TEST(CategoryDescriptors, SavesNamedLettersInKeyOrderCleanedAndReadsBackAndShowsTheLetterForNoName)
{
    TempDir dir;
    TcategoryMap map{{'\x01', "shifted key"}, {' ', "blank"}, {'@', "before A"}, {'[', "after Z"},
                     {'a', "lower case"}, {'C', ""}, {'K', "Leakage"}, {'B', "Line one\nZ, injected"},
                     {'D', "\t\r\n"}, {'E', " Doors\t"}};
    ASSERT_EQ(CategoryDescriptors::save(map, dir / "catdes.dat"), 0);
    EXPECT_EQ(TempDir::read(dir / "catdes.dat"), "B, Line one Z, injected\nE, Doors\nK, Leakage\n");
    TcategoryMap back;
    ASSERT_EQ(CategoryDescriptors::load(dir / "catdes.dat", back), 0);
    EXPECT_EQ(back, (TcategoryMap{{'B', "Line one Z, injected"}, {'E', "Doors"}, {'K', "Leakage"}}));
    EXPECT_EQ(CategoryDescriptors::save(map, dir / "none" / "catdes.dat"), -1);

    // No name, or a name the category editor cleared: the letter itself.
    back['D'] = "";
    std::string shown;
    for (char letter : {'B', 'C', 'D', '\0', ' '})
        shown += CategoryDescriptors::displayText(back, letter) + "|";
    EXPECT_EQ(shown, "Line one Z, injected|C|D|<empty>||");
}

TEST(FieldSpec, AcceptsBareTypesAndRangesAndThrowsCodeSixOnGrammarViolations)
{
    // Left and right label, type letter and tag, and the range when there is one.
    const std::pair<const char *, std::string> cases[] = {
        {"\"Prompt:\"\t\"\"\t\"U\"", "Prompt:||U3"},
        {"\"a\"\t\"b\"\t\"A\"", "a|b|A0"},
        {"\"a\"\t\"b\"\t\"N\"", "a|b|N1"},
        {"\"Limit:\"\t\"Ohm\"\t\"F-0.5,10.25\"", "Limit:|Ohm|F2 -0.5..10.25"},
        {"\"a\"\t\"b\"\t\"N5,5\"", "a|b|N1 5..5"},
        {"\"a\"\t\"b\"\t\"N+5,10\"", "a|b|N1 5..10"},
    };
    for (const auto &[line, expected] : cases) {
        const TfieldSpec f = TfieldSpec::parse(line);
        std::ostringstream shown;
        shown << f.leftLabel << "|" << f.rightLabel << "|" << f.typeLetter << f.typeTag;
        if (f.range.hasRange)
            shown << " " << f.range.minimum << ".." << f.range.maximum;
        EXPECT_EQ(shown.str(), expected) << line;
    }

    const char *bad[] = {
        "\"a\"\t\"b\"",                 // two tokens
        "\"a\"\t\"b\"\t\"N\"\t\"x\"",   // four tokens
        "a\t\"b\"\t\"N\"",              // unquoted label
        "\"a\"\t\"b\"\tN",              // unquoted type
        "\"a\"\t\"b\"\t\"X\"",          // unknown letter
        "\"a\"\t\"b\"\t\"A0,10\"",      // range on a text field
        "\"a\"\t\"b\"\t\"N,10\"",       // empty minimum
        "\"a\"\t\"b\"\t\"N0,\"",        // empty maximum
        "\"a\"\t\"b\"\t\"N10,0\"",      // maximum below minimum
        "\"a\"\t\"b\"\t\"N0;10\"",      // no comma
        "\"a\"\t\"b\"\t\"N0x1,10\"",    // not decimal
        "\"a\"\t\"b\"\t\"N1,2,3\"",     // two commas
        "\"a\"\t\"b\"\t\"\"",           // empty type
    };
    for (const char *line : bad) {
        auto e = thrown<TInstrPanelError>([line] { TfieldSpec::parse(line); });
        ASSERT_TRUE(e) << "accepted: " << line;
        EXPECT_EQ(e->code, 6) << line;
    }
}
