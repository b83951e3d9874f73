#include "CategoryDescriptors.h"
#include "FieldSpec.h"
#include "TempDir.h"
#include "Thrown.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

TEST(CategoryDescriptors, ParsesLetterCommaText)
{
    TempDir dir;
    auto file = dir.write("catdes.dat", "B, Electrical tests\r\n"
                                        "C,No blank\n"
                                        "D ,  Blank before comma\n"
                                        "E, \n"
                                        "not a category line\n"
                                        "\n"
                                        "F, Last without line end");
    TcategoryMap map{{'Z', "stale"}};
    ASSERT_EQ(CategoryDescriptors::load(file, map), 0);
    EXPECT_EQ(map, (TcategoryMap{{'B', "Electrical tests"},
                                 {'C', "No blank"},
                                 {'D', "Blank before comma"},
                                 {'E', ""},
                                 {'F', "Last without line end"}}));
    EXPECT_EQ(CategoryDescriptors::load(dir / "missing.dat", map), -1);
}

TEST(CategoryDescriptors, RestOfALongLineIsReadAsTheNextLine)
{
    TempDir dir;
    auto file = dir.write("catdes.dat", "B, " + std::string(4092, 'x') + "C, Cables\n"
                                            + std::string("D, Doors\0junk\n", 14));
    TcategoryMap map;
    ASSERT_EQ(CategoryDescriptors::load(file, map), 0);
    EXPECT_EQ(map, (TcategoryMap{{'B', std::string(4092, 'x')}, {'C', "Cables"}, {'D', "Doors"}}));
}

// Only named letters A to Z are saved, in key order, with their names cleaned as typed names are.
TEST(CategoryDescriptors, SavesNamedLettersInKeyOrderCleanedAndReadsBack)
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
}

TEST(CategoryDescriptors, DisplayTextAndErrorText)
{
    TcategoryMap map{{'B', "Electrical tests"}, {'D', ""}};
    EXPECT_EQ(CategoryDescriptors::displayText(map, 'B'), "Electrical tests");
    EXPECT_EQ(CategoryDescriptors::displayText(map, 'C'), "C");
    EXPECT_EQ(CategoryDescriptors::displayText(map, 'D'), "D"); // cleared by the category editor
    EXPECT_EQ(CategoryDescriptors::displayText(map, 0), "<empty>");
    EXPECT_EQ(CategoryDescriptors::displayText(map, ' '), "");
    EXPECT_STREQ(CategoryDescriptors::loadErrorText(),
                 "There has been an error initializing the category descriptors\rThis will not affect the "
                 "operation of the program, however all\rinstructions will be displayed without a category name.");
}

TEST(FieldSpec, AcceptsBareTypesAndRanges)
{
    const struct {
        const char *line;
        std::string left, right;
        char letter;
        int tag;
        bool hasRange;
        double min, max;
    } cases[] = {
        {"\"Prompt:\"\t\"\"\t\"U\"", "Prompt:", "", 'U', 3, false, 0, 0},
        {"\"a\"\t\"b\"\t\"A\"", "a", "b", 'A', 0, false, 0, 0},
        {"\"a\"\t\"b\"\t\"N\"", "a", "b", 'N', 1, false, 0, 0},
        {"\"Limit:\"\t\"Ohm\"\t\"F-0.5,10.25\"", "Limit:", "Ohm", 'F', 2, true, -0.5, 10.25},
        {"\"a\"\t\"b\"\t\"N5,5\"", "a", "b", 'N', 1, true, 5, 5},
        {"\"a\"\t\"b\"\t\"N+5,10\"", "a", "b", 'N', 1, true, 5, 10},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line);
        TfieldSpec field = TfieldSpec::parse(c.line);
        EXPECT_EQ(field.leftLabel, c.left);
        EXPECT_EQ(field.rightLabel, c.right);
        EXPECT_EQ(field.typeLetter, c.letter);
        EXPECT_EQ(field.typeTag, c.tag);
        EXPECT_EQ(field.range.hasRange, c.hasRange);
        if (c.hasRange) {
            EXPECT_DOUBLE_EQ(field.range.minimum, c.min);
            EXPECT_DOUBLE_EQ(field.range.maximum, c.max);
        }
    }
}

TEST(FieldSpec, GrammarViolationsThrowCodeSix)
{
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
        EXPECT_NE(e->file.find("FieldSpec"), std::string::npos);
    }
}
