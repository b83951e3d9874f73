// The autosequence types of the "A" definition file: the lines that make a type,
// the ones that do not, and finding the file among the others.
#include "CoreTest.h"
#include "TautoSequenceTypes.h"

TEST(AutoSequenceTypes, EachLineIsCodeTextAndAWholeCountElseTheListFailsAndTheAFileIsFoundByItsOpCode)
{
    std::vector<TautoSequenceType> types;
    ASSERT_TRUE(TautoSequenceTypes::parse({"PHY\tPhysical Inspection\t18", "UT1\tUser Tester 1\t12", "XX\t\t0"}, types));
    EXPECT_EQ(types, (std::vector<TautoSequenceType>{
                         {"PHY", "Physical Inspection", 18}, {"UT1", "User Tester 1", 12}, {"XX", "", 0}}));
    for (const char *line : {"PHY\tPhysical\t18\textra", "PHY\tPhysical", "PHY\tPhysical\t-1", "PHY\tPhysical\t1.5",
                             "PHY\tPhysical\t", "PHY\tPhysical\t12 "})
        EXPECT_FALSE(TautoSequenceTypes::parse({"UT1\tUser Tester 1\t12", line}, types)) << line;

    // The load finds the "A" file by its op code.
    TempDir data;
    data.write("measure.in", "M - Measure\nN 9\nValue\tN\t\n");
    data.write("zcalls.in", "A - Autosequence\nN 0\nPHY\tPhysical Inspection\t18\n");
    ASSERT_TRUE(TautoSequenceTypes::load(data.path(), types));
    EXPECT_EQ(types, (std::vector<TautoSequenceType>{{"PHY", "Physical Inspection", 18}}));
    fs::remove(data / "zcalls.in");
    EXPECT_FALSE(TautoSequenceTypes::load(data.path(), types));
    EXPECT_TRUE(types.empty());
}
