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
    static QStringList row(int number, const QString &command)
    {
        return {QString::number(number), "Earth bond", "M - Measure", command};
    }
    TempDir temp;
};
}

TEST_F(ListingPrinterTest, ColumnsArePaddedToTheWidestCellPlusTwo)
{
    const struct {
        QList<QStringList> rows;
        PdfPages pages;
    } cases[] = {
        {{Header, row(7, "EB\u00BB0\u00BB5"), {"10", "B", "P - Pass/Fail", "Plug ok?"}},
         {{Indent + "KT930pc Instruction Listing", Indent + "No.  Category    Op Code        Command",
           Indent + "7    Earth bond  M - Measure    EB\u00BB0\u00BB5", Indent + "10   B           P - Pass/Fail  Plug ok?"}}},
        {{Header, {"", "", "", ""}}, {{Indent + "KT930pc Instruction Listing", Indent + "No.  Category  Op Code  Command"}}}};
    for (const auto &c : cases)
        EXPECT_EQ(printPages(c.rows, true), c.pages);
}

// (page height - 400) / (sample text height + 10) lines a page, as a reader of the layout works it out.
TEST_F(ListingPrinterTest, EveryPageRepeatsTitleAndHeaderAndHoldsTheComputedLineCount)
{
    QPrinter probe(QPrinter::HighResolution);
    TinstListingPrinter::preparePdf(probe, QString::fromStdString((temp / "probe.pdf").string()));
    const int rowsPerPage = (probe.height() - 400) / (QFontMetrics(QFont("Courier New", 10), &probe).height() + 10) - 3;
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
        EXPECT_EQ(std::vector(lines.begin(), lines.begin() + 3),
                  (std::vector<std::string>{Indent + "KT930pc Instruction Listing", "",
                                            Indent + "No.  Category    Op Code      Command"}));
        int onPage = 0;
        for (std::size_t i = 3; i < lines.size() && !lines[i].empty(); ++i, ++onPage, ++next) {
            std::string number = std::to_string(next);
            EXPECT_EQ(lines[i], Indent + number + std::string(5 - number.size(), ' ') + "Earth bond  M - Measure  x");
        }
        EXPECT_EQ(onPage, p < 2 ? rowsPerPage : 1) << p;
    }
}

// Every character that starts left of the page's right edge is shown, no more.
TEST_F(ListingPrinterTest, LongCommandsAreCutAtThePageEdgeNotWrapped)
{
    QString longCommand;
    for (int i = 0; i < 30; ++i)
        longCommand += QStringLiteral("%1........").arg(i, 2, 10, QLatin1Char('0'));
    auto pages = printPages({Header, row(1, longCommand), row(2, "short")});
    ASSERT_EQ(pages.size(), 1u);
    ASSERT_GE(pages[0].size(), 5u);
    QPrinter printer(QPrinter::HighResolution);
    TinstListingPrinter::preparePdf(printer, QString::fromStdString((temp / "probe.pdf").string()));
    const int pitch = QFontMetrics(QFont("Courier New", 10), &printer).horizontalAdvance(QLatin1Char('0'));
    const int visible = (printer.width() - TinstListingPrinter::Margin + pitch - 1) / pitch;
    std::string full = "1    Earth bond  M - Measure  " + longCommand.toStdString();
    ASSERT_LT(visible, int(full.size()));
    EXPECT_EQ(pages[0][3], Indent + full.substr(0, std::size_t(visible)));
    EXPECT_EQ(pages[0][4], Indent + "2    Earth bond  M - Measure  short");
}
