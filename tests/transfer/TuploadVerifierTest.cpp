// Places named by the upload check, at the edges of the documented layouts.
#include "TuploadVerifier.h"
#include <gtest/gtest.h>
#include <memory>

TEST(TuploadVerifierTest, NamesTheRecordOfAnOffsetInEachArea)
{
    EXPECT_EQ(TuploadVerifier::checkitemPlace(0), "checkitem 1");
    EXPECT_EQ(TuploadVerifier::checkitemPlace(45935), "checkitem 1044");
    EXPECT_EQ(TuploadVerifier::autosequencePlace(1583), "physical inspection 18");
    EXPECT_EQ(TuploadVerifier::autosequencePlace(1584), "user tester 1, autosequence 1");
    EXPECT_EQ(TuploadVerifier::autosequencePlace(1584 + 13 * 88), "user tester 2, autosequence 2");
    EXPECT_EQ(TuploadVerifier::autosequencePlace(6863), "user tester 5, autosequence 12");
    EXPECT_EQ(TuploadVerifier::autosequencePlace(6864 + 21), "user tester 2's name");
    EXPECT_EQ(TuploadVerifier::autosequencePlace(6969), "the unused end of the autosequence area");
    EXPECT_EQ(TuploadVerifier::checklistPlace(264 * 499 + 263), "checklist 500");
}

TEST(TuploadVerifierTest, ReportsTheFirstDifferenceInTransferOrder)
{
    auto sent = std::make_unique<TtransferData>();
    auto back = std::make_unique<TtransferData>();
    EXPECT_EQ(TuploadVerifier::firstDifference(*sent, *back), std::nullopt);
    back->selection = 7; // not part of what travels
    back->header.settings.method = 2;
    EXPECT_EQ(TuploadVerifier::firstDifference(*sent, *back), std::nullopt);
    back->checklists[264 * 3] = 1;
    back->autosequences[6864 + 42] = 1;
    EXPECT_EQ(TuploadVerifier::firstDifference(*sent, *back),
              "user tester 3's name (byte 6906 of the autosequence area)");
    back->checkitems[44] = 1;
    EXPECT_EQ(TuploadVerifier::firstDifference(*sent, *back), "checkitem 2 (byte 44 of the checkitem area)");
}
