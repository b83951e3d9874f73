// The listing printed to a PDF file through the printer's own code and read back
// as text with pdftotext -layout.
#include "PdfText.h"
#include "TempDir.h"
#include "TinstListingPrinter.h"
#include <QFontMetrics>
#include <QPrinter>
#include <gtest/gtest.h>

namespace {
const QStringList Header{"No.", "Category", "Op Code", "Command"};
const std::string Indent = "    ";

class ListingPrinterTest : public ::testing::Test {
protected:
    // Pages of the printed PDF, each as its text lines.
    PdfPages printPages(const QList<QStringList> &rows, bool textOnly = false)
    {
        QPrinter printer(QPrinter::HighResolution);
        TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / "list.pdf").string()));
        EXPECT_TRUE(TinstListingPrinter::print(printer, rows));
        return pdfPages(temp / "list.pdf", textOnly);
    }

    // Lines per page worked out from the page and font alone, as a reader of the
    // layout would: (page height - 400) / (sample text height + 10).
    int expectedLinesPerPage()
    {
        QPrinter printer(QPrinter::HighResolution);
        TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / "probe.pdf").string()));
        QFont font("Courier New", 10);
        QFontMetrics metrics(font, &printer);
        int lineHeight = metrics.height() + 10;
        return (printer.height() - 400) / lineHeight;
    }

    static QStringList row(int number, const QString &command)
    {
        return {QString::number(number), "Earth bond", "M - Measure", command};
    }

    TempDir temp;
};
}

TEST_F(ListingPrinterTest, ColumnsArePaddedToTheWidestCellPlusTwo)
{
    auto pages = printPages({Header, row(7, "EB\u00BB0\u00BB5"), {"10", "B", "P - Pass/Fail", "Plug ok?"}}, true);
    EXPECT_EQ(pages, (PdfPages{{Indent + "KT930pc Instruction Listing", Indent + "No.  Category    Op Code        Command",
                               Indent + "7    Earth bond  M - Measure    EB\u00BB0\u00BB5",
                               Indent + "10   B           P - Pass/Fail  Plug ok?"}}));
}

TEST_F(ListingPrinterTest, EveryPageRepeatsTitleAndHeaderAndHoldsTheComputedLineCount)
{
    const int perPage = expectedLinesPerPage();
    const int rowsPerPage = perPage - 3; // title, blank line, header
    ASSERT_GT(rowsPerPage, 10);
    QList<QStringList> rows{Header};
    for (int n = 1; n <= 2 * rowsPerPage + 1; ++n)
        rows.append(row(n, "x"));
    auto pages = printPages(rows);
    ASSERT_EQ(pages.size(), 3u);

    int next = 1;
    for (std::size_t p = 0; p < pages.size(); ++p) {
        const auto &lines = pages[p];
        ASSERT_GE(lines.size(), 4u);
        EXPECT_EQ(lines[0], Indent + "KT930pc Instruction Listing") << p;
        EXPECT_EQ(lines[1], "") << p;
        EXPECT_EQ(lines[2], Indent + "No.  Category    Op Code      Command") << p;
        int onPage = 0;
        for (std::size_t i = 3; i < lines.size() && !lines[i].empty(); ++i, ++onPage, ++next) {
            std::string number = std::to_string(next);
            EXPECT_EQ(lines[i], Indent + number + std::string(5 - number.size(), ' ') + "Earth bond  M - Measure  x");
        }
        EXPECT_EQ(onPage, p < 2 ? rowsPerPage : 1) << p;
    }
}

TEST_F(ListingPrinterTest, LongCommandsAreCutAtThePageEdgeNotWrapped)
{
    QString longCommand;
    for (int i = 0; i < 30; ++i)
        longCommand += QStringLiteral("%1........").arg(i, 2, 10, QLatin1Char('0'));
    auto pages = printPages({Header, row(1, longCommand), row(2, "short")});
    ASSERT_EQ(pages.size(), 1u);
    ASSERT_GE(pages[0].size(), 5u);

    // Every character that starts left of the page's right edge is shown, no more.
    QPrinter printer(QPrinter::HighResolution);
    TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / "probe.pdf").string()));
    QFontMetrics metrics(QFont("Courier New", 10), &printer);
    const int pitch = metrics.horizontalAdvance(QLatin1Char('0'));
    const int visible = (printer.width() - TinstListingPrinter::Margin + pitch - 1) / pitch;
    std::string full = "1    Earth bond  M - Measure  " + longCommand.toStdString();
    ASSERT_LT(visible, int(full.size()));
    EXPECT_EQ(pages[0][3], Indent + full.substr(0, std::size_t(visible)));
    EXPECT_EQ(pages[0][4], Indent + "2    Earth bond  M - Measure  short");
}

TEST_F(ListingPrinterTest, EmptyListIsOnePageWithHeadingAndHeader)
{
    EXPECT_EQ(printPages({Header, {"", "", "", ""}}, true),
              (PdfPages{{Indent + "KT930pc Instruction Listing", Indent + "No.  Category  Op Code  Command"}}));
}
