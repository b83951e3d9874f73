// Places named by the upload check, at the edges of the documented layouts.
#include "TuploadVerifier.h"
#include <gtest/gtest.h>

TEST(TuploadVerifierTest, NamesTheRecordOfAnOffsetInEachAreaAndTheFirstDifferenceInTransferOrder)
{
    using V = TuploadVerifier;
    EXPECT_EQ(
        (std::vector{V::checkitemPlace(0), V::checkitemPlace(45935), V::autosequencePlace(1583),
                     V::autosequencePlace(1584), V::autosequencePlace(1584 + 13 * 88), V::autosequencePlace(6863),
                     V::autosequencePlace(6864 + 21), V::autosequencePlace(6969), V::checklistPlace(264 * 499 + 263)}),
        (std::vector<std::string>{"checkitem 1", "checkitem 1044", "physical inspection 18",
                                  "user tester 1, autosequence 1", "user tester 2, autosequence 2",
                                  "user tester 5, autosequence 12", "user tester 2's name",
                                  "the unused end of the autosequence area", "checklist 500"}));
    auto sent = std::make_unique<TtransferData>(), back = std::make_unique<TtransferData>();
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
