// Names typed or pasted by a user are cleaned before they are stored: inner
// control characters become blanks, the ends are trimmed, and a tester name is
// upper-cased with the same Windows-1252 mapping as the sequence titles.
#include "CategoryDescriptors.h"
#include "TempDir.h"
#include "TlistTexts.h"
#include "TtypedText.h"
#include <gtest/gtest.h>

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
}

TEST(TypedName, CategoryFileGetsOneLinePerNamedCategory)
{
    TempDir dir;
    TcategoryMap map{{'B', "Line one\nZ, injected"}, {'C', "\t\r\n"}, {'D', " Doors\t"}};
    ASSERT_EQ(CategoryDescriptors::save(map, dir / "catdes.dat"), 0);
    EXPECT_EQ(TempDir::read(dir / "catdes.dat"), "B, Line one Z, injected\nD, Doors\n");
}

TEST(TypedName, TesterNameIsCleanedAndUpperCasedInWindows1252)
{
    EXPECT_EQ(TlistTexts::testerName("  caf\xE9\tbay\n "), "CAF\xC9 BAY");
    EXPECT_EQ(TlistTexts::testerName("\xFF\x9A" "s\xDF"), "\x9F\x8A" "S\xDF");
}
