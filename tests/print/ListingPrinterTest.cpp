// The listing printed to a PDF file through the printer's own code and read back as text with pdftotext -layout.
#include "PdfText.h"
#include "TempDir.h"
#include "TinstListingPrinter.h"
#include <QFontMetrics>
#include <QPrinter>
#include <gtest/gtest.h>

namespace {
const QStringList Header{"No.", "Category", "Op Code", "Command"};
const std::string Indent = "    ", Title = Indent + "KT930pc Instruction Listing";

class ListingPrinterTest : public ::testing::Test {
protected:
    // A printer on a PDF file of the temporary folder, and the pages printed on it by rows.
    std::unique_ptr<QPrinter> printer(const std::string &name)
    {
        auto p = std::make_unique<QPrinter>(QPrinter::HighResolution);
        TinstListingPrinter::preparePdf(*p, QString::fromStdString((temp / name).string()));
        return p;
    }
    PdfPages printPages(const QList<QStringList> &rows, bool textOnly = false)
    {
        EXPECT_TRUE(TinstListingPrinter::print(*printer("list.pdf"), rows));
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
    EXPECT_EQ(printPages({Header, row(7, "EB\u00BB0\u00BB5"), {"10", "B", "P - Pass/Fail", "Plug ok?"}}, true),
              (PdfPages{{Title, Indent + "No.  Category    Op Code        Command",
                         Indent + "7    Earth bond  M - Measure    EB\u00BB0\u00BB5",
                         Indent + "10   B           P - Pass/Fail  Plug ok?"}}));
    EXPECT_EQ(printPages({Header, {"", "", "", ""}}, true),
              (PdfPages{{Title, Indent + "No.  Category  Op Code  Command"}}));
}

// (page height - 400) / (sample text height + 10) lines a page, as a reader of the layout works it out.
TEST_F(ListingPrinterTest, EveryPageRepeatsTitleAndHeaderAndHoldsTheComputedLineCount)
{
    const auto probe = printer("probe.pdf");
    const int rowsPerPage =
        (probe->height() - 400) / (QFontMetrics(QFont("Courier New", 10), probe.get()).height() + 10) - 3;
    ASSERT_GT(rowsPerPage, 10);
    QList<QStringList> rows{Header};
    PdfPages expected(3, {Title, "", Indent + "No.  Category    Op Code      Command"});
    for (int n = 1; n <= 2 * rowsPerPage + 1; ++n) {
        rows.append(row(n, "x"));
        const std::string number = std::to_string(n);
        expected[std::size_t((n - 1) / rowsPerPage)].push_back(Indent + number + std::string(5 - number.size(), ' ') +
                                                               "Earth bond  M - Measure  x");
    }
    PdfPages pages = printPages(rows);
    for (auto &lines : pages) // what follows the rows is the page's blank remainder
        lines.erase(std::find(lines.begin() + std::min<std::ptrdiff_t>(3, std::ssize(lines)), lines.end(), ""),
                    lines.end());
    EXPECT_EQ(pages, expected);
}

// Every character that starts left of the page's right edge is shown, no more.
TEST_F(ListingPrinterTest, LongCommandsAreCutAtThePageEdgeNotWrapped)
{
    QString longCommand;
    for (int i = 0; i < 30; ++i)
        longCommand += QStringLiteral("%1........").arg(i, 2, 10, QLatin1Char('0'));
    const auto probe = printer("probe.pdf");
    const int pitch = QFontMetrics(QFont("Courier New", 10), probe.get()).horizontalAdvance(QLatin1Char('0'));
    const int visible = (probe->width() - TinstListingPrinter::Margin + pitch - 1) / pitch;
    const std::string full = "1    Earth bond  M - Measure  " + longCommand.toStdString();
    ASSERT_LT(visible, int(full.size()));
    EXPECT_EQ(
        printPages({Header, row(1, longCommand), row(2, "short")}, true),
        (PdfPages{{Title, Indent + "No.  Category    Op Code      Command",
                   Indent + full.substr(0, std::size_t(visible)), Indent + "2    Earth bond  M - Measure  short"}}));
}
