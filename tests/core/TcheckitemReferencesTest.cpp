#include "TcheckitemReferences.h"
#include "ByteBuilder.h"
#include "TempDir.h"
#include <gtest/gtest.h>

using namespace ByteBuilder;

TEST(TcheckitemReferences, ListsEachFileInNameOrderWithTheSequencesThatUseTheNumber)
{
    TempDir data;
    data.write("usertester2.asq", asqHeader("User Tester Autosequences", "Bench 2", 2) +
                                      asqRecord("LEAKAGE", "CLASS 1", 0, {3, 7, 0}) +
                                      asqRecord("EARTH", "", 0, {1, 0}));
    data.write("inspection.asq", asqHeader("Physical Inspections", "Ward A", 3) + asqRecord("CABLE", "", 0, {7, 0})
                                     + asqRecord("(UNUSED)", "", 0, {0})
                                     + asqRecord("PLUG", "FUSE", 0, {2, 0, 7})); // also after the end
    data.write("usertester1.asq",
               asqHeader("User Tester Autosequences", "Bench 1", 1) + asqRecord("OTHER", "", 0, {8}));
    data.write("broken.asq", "not an autosequence file");
    data.write("notes.txt", "7");

    EXPECT_EQ(TcheckitemReferences::find(7, data.path()).lines,
              (std::vector<std::string>{"Physical Inspections - Ward A", "  CABLE - ", "  PLUG - FUSE",
                                        "User Tester Autosequences - Bench 2", "  LEAKAGE - CLASS 1"}));
    const TcheckitemReferences unused = TcheckitemReferences::find(99, data.path());
    EXPECT_TRUE(unused.autosequenceFilesFound);
    EXPECT_TRUE(unused.lines.empty());
    for (const char *file : {"usertester1.asq", "usertester2.asq", "inspection.asq", "broken.asq"})
        std::filesystem::remove(data / file); // notes.txt stays
    EXPECT_FALSE(TcheckitemReferences::find(7, data.path()).autosequenceFilesFound);
    EXPECT_FALSE(TcheckitemReferences::find(7, data / "absent").autosequenceFilesFound);
}
