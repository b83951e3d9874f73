// The autosequence printout on a PDF file read back with pdftotext: heading, titles, port and baud lines, numbered
// rows.
#include "PdfText.h"
#include "TempDir.h"
#include "TinstListingPrinter.h"
#include "TsequencePrinter.h"
#include <QPrinter>
#include <gtest/gtest.h>

namespace {
const std::string Indent = "    "; // the 200-unit margin at 6 points a column

TsequenceReport report(int rows)
{
    TsequenceReport r{.date = "March 04 2027 - 09:15:02",
                      .title1 = "EARTH BOND",
                      .title2 = "CLASS I",
                      .port = 3,
                      .baudRate = 9600,
                      .rows = {}};
    for (int n = 1; n <= rows; ++n)
        r.rows.push_back({n % 2 ? "Electrical" : "Visual", n % 2 ? "M - Measure" : "P - Pass/Fail",
                          "Step " + std::to_string(n) + "\xBB" + "0.1"});
    return r;
}

struct SequencePrinterTest : ::testing::Test {
    // Prints on a PDF file of the temporary folder, on paper of this size; its pages without blank lines.
    std::optional<PdfPages> print(const std::vector<TsequenceReport> &reports, const std::string &name = "sequence.pdf",
                                  QPageSize::PageSizeId paper = QPageSize::A4)
    {
        QPrinter printer(QPrinter::HighResolution);
        TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / name).string()));
        printer.setPageSize(QPageSize(paper));
        return TsequencePrinter::print(printer, reports) ? std::optional(pdfPages(temp / name, true)) : std::nullopt;
    }
    TempDir temp;
};
} // namespace

TEST_F(SequencePrinterTest, OneItemSequenceHasTheHeadingSettingLinesAndOneNumberedRow)
{
    EXPECT_EQ(print({report(1)}),
              (PdfPages{{Indent + "March 04 2027 - 09:15:02", Indent + "KT930 Plus Safety Analyzer",
                         Indent + "Autosequences", Indent + "AutoSequence EARTH BOND - CLASS I", Indent + "Port: 3",
                         Indent + "Baud Rate: 9600 Baud", Indent + "No.  Category    Op Code      Command",
                         Indent + "1.   Electrical  M - Measure  Step 1\u00BB0.1"}}));
}

TEST_F(SequencePrinterTest, NothingToPrintOrNoPrinterIsAFailure)
{
    EXPECT_EQ(print({}), std::nullopt);
    EXPECT_EQ(print({report(1)}, "absent/x.pdf"), std::nullopt);
}

TEST_F(SequencePrinterTest, RowsThatDoNotFitGoOnANextPageUnderTheColumnHeader)
{
    const auto pages = print({report(24), report(1)}, "small.pdf", QPageSize::A6); // 29 lines between the margins
    ASSERT_TRUE(pages);
    ASSERT_EQ(pages->size(), 3u);
    EXPECT_EQ(pages->at(0).back().substr(0, 7), Indent + "20.");
    EXPECT_EQ(pages->at(1), (std::vector<std::string>{Indent + "No.  Category    Op Code        Command",
                                                      Indent + "21.  Electrical  M - Measure    Step 21\u00BB0.1",
                                                      Indent + "22.  Visual      P - Pass/Fail  Step 22\u00BB0.1",
                                                      Indent + "23.  Electrical  M - Measure    Step 23\u00BB0.1",
                                                      Indent + "24.  Visual      P - Pass/Fail  Step 24\u00BB0.1"}));
    EXPECT_EQ(pages->at(2).at(3), Indent + "AutoSequence EARTH BOND - CLASS I");
}
