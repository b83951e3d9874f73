#include "CategoryDescriptors.h"
#include "FieldSpec.h"
#include "TempDir.h"
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

TEST(CategoryDescriptors, SavesInKeyOrderAndReadsBack)
{
    TempDir dir;
    TcategoryMap map{{'K', "Leakage"}, {'B', "Electrical tests"}};
    ASSERT_EQ(CategoryDescriptors::save(map, dir / "catdes.dat"), 0);
    EXPECT_EQ(TempDir::read(dir / "catdes.dat"), "B, Electrical tests\nK, Leakage\n");
    TcategoryMap back;
    ASSERT_EQ(CategoryDescriptors::load(dir / "catdes.dat", back), 0);
    EXPECT_EQ(back, map);

    auto readOnly = dir.write("ro.dat", "A, x\n");
    ::chmod(readOnly.c_str(), 0444);
    EXPECT_EQ(CategoryDescriptors::save(map, readOnly), -1);
    EXPECT_EQ(TempDir::read(readOnly), "A, x\n");
}

TEST(CategoryDescriptors, SavesOnlyNamedLettersAToZ)
{
    TempDir dir;
    TcategoryMap map{{'\x01', "shifted key"}, {' ', "blank"}, {'@', "before A"}, {'[', "after Z"},
                     {'a', "lower case"}, {'C', ""}, {'A', "First"}, {'Z', "Last"}};
    ASSERT_EQ(CategoryDescriptors::save(map, dir / "catdes.dat"), 0);
    EXPECT_EQ(TempDir::read(dir / "catdes.dat"), "A, First\nZ, Last\n");
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
    TfieldSpec bare = TfieldSpec::parse("\"Prompt:\"\t\"\"\t\"U\"");
    EXPECT_EQ(bare.leftLabel, "Prompt:");
    EXPECT_EQ(bare.rightLabel, "");
    EXPECT_EQ(bare.typeLetter, 'U');
    EXPECT_EQ(bare.typeTag, 3);
    EXPECT_FALSE(bare.range.hasRange);

    EXPECT_EQ(TfieldSpec::parse("\"a\"\t\"b\"\t\"A\"").typeTag, 0);
    EXPECT_EQ(TfieldSpec::parse("\"a\"\t\"b\"\t\"N\"").typeTag, 1);

    TfieldSpec range = TfieldSpec::parse("\"Limit:\"\t\"Ohm\"\t\"F-0.5,10.25\"");
    EXPECT_EQ(range.typeTag, 2);
    EXPECT_TRUE(range.range.hasRange);
    EXPECT_DOUBLE_EQ(range.range.minimum, -0.5);
    EXPECT_DOUBLE_EQ(range.range.maximum, 10.25);

    TfieldSpec equal = TfieldSpec::parse("\"a\"\t\"b\"\t\"N5,5\"");
    EXPECT_DOUBLE_EQ(equal.range.minimum, 5);
    EXPECT_DOUBLE_EQ(equal.range.maximum, 5);
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
        try {
            TfieldSpec::parse(line);
            ADD_FAILURE() << "accepted: " << line;
        } catch (const TInstrPanelError &e) {
            EXPECT_EQ(e.code, 6) << line;
            EXPECT_NE(e.file.find("FieldSpec"), std::string::npos);
        }
    }
}
