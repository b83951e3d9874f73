// The autosequence printout on a PDF file, read back with pdftotext -layout: the
// heading, the titles, the port and baud lines, and the numbered rows in order.
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
    TsequenceReport r;
    r.date = "March 04 2027 - 09:15:02";
    r.title1 = "EARTH BOND";
    r.title2 = "CLASS I";
    r.port = 3;
    r.baudRate = 9600;
    for (int n = 1; n <= rows; ++n)
        r.rows.push_back({n % 2 ? "Electrical" : "Visual", n % 2 ? "M - Measure" : "P - Pass/Fail",
                          "Step " + std::to_string(n) + "\xBB" "0.1"});
    return r;
}

class SequencePrinterTest : public ::testing::Test {
protected:
    // The pages of the printed PDF, blank lines and trailing blanks dropped.
    PdfPages printPages(const std::vector<TsequenceReport> &reports)
    {
        QPrinter printer(QPrinter::HighResolution);
        TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / "sequence.pdf").string()));
        EXPECT_TRUE(TsequencePrinter::print(printer, reports));
        return pdfPages(temp / "sequence.pdf", true);
    }
    TempDir temp;
};
}

TEST_F(SequencePrinterTest, OneItemSequenceHasTheHeadingSettingLinesAndOneNumberedRow)
{
    EXPECT_EQ(printPages({report(1)}), (PdfPages{{
                            Indent + "March 04 2027 - 09:15:02",
                            Indent + "KT930 Plus Safety Analyzer",
                            Indent + "Autosequences",
                            Indent + "AutoSequence EARTH BOND - CLASS I",
                            Indent + "Port: 3",
                            Indent + "Baud Rate: 9600 Baud",
                            Indent + "No.  Category    Op Code      Command",
                            Indent + "1.   Electrical  M - Measure  Step 1\u00BB0.1",
                        }}));
}

TEST_F(SequencePrinterTest, NothingToPrintOrNoPrinterIsAFailure)
{
    QPrinter printer(QPrinter::HighResolution);
    TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / "none.pdf").string()));
    EXPECT_FALSE(TsequencePrinter::print(printer, {}));
    TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / "absent/x.pdf").string()));
    EXPECT_FALSE(TsequencePrinter::print(printer, {report(1)}));
}

TEST_F(SequencePrinterTest, RowsThatDoNotFitGoOnANextPageUnderTheColumnHeader)
{
    QPrinter printer(QPrinter::HighResolution);
    TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / "small.pdf").string()));
    printer.setPageSize(QPageSize(QPageSize::A6)); // 29 lines between the margins
    ASSERT_TRUE(TsequencePrinter::print(printer, {report(24), report(1)}));
    const PdfPages pages = pdfPages(temp / "small.pdf", true);
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_EQ(pages[0].back().substr(0, 7), Indent + "20.");
    ASSERT_EQ(pages[1].size(), 5u);
    EXPECT_EQ(pages[1][0], Indent + "No.  Category    Op Code        Command");
    EXPECT_EQ(pages[1][4], Indent + "24.  Visual      P - Pass/Fail  Step 24\u00BB0.1");
    EXPECT_EQ(pages[2][3], Indent + "AutoSequence EARTH BOND - CLASS I");
}
