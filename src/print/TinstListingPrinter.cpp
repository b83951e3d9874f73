#include "TinstListingPrinter.h"
#include "TprintFonts.h"
#include <QAbstractItemModel>
#include <QFont>
#include <QFontMetrics>
#include <QPageSize>
#include <QPainter>
#include <QPrinter>
#include <algorithm>

namespace {
constexpr int PointSize = 10;
constexpr int LineGap = 10;

// The part of text whose characters start left of width: what the page can show.
QString visiblePart(const QString &text, const QFontMetrics &metrics, int width)
{
    qsizetype count = 0;
    while (count < text.size() && metrics.horizontalAdvance(text.left(count)) < width)
        ++count;
    return text.left(count);
}
}

const char *TinstListingPrinter::sampleText()
{
    return "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ123456789!@#$%^&*()_+`-={}|[]\\:\";'<>?,./";
}

void TinstListingPrinter::preparePdf(QPrinter &printer, const QString &fileName)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(fileName);
    printer.setResolution(PdfResolution);
    printer.setPageSize(QPageSize(QPageSize::A4));
    // A PDF page has no unprintable edge: the margins of the layout are all there is.
    printer.setFullPage(true);
}

int TinstListingPrinter::lineHeight(QPainter &painter)
{
    return painter.fontMetrics().size(Qt::TextSingleLine, QString::fromLatin1(sampleText())).height() + LineGap;
}

int TinstListingPrinter::linesPerPage(int pageHeight, int lineHeight)
{
    return (pageHeight - 2 * Margin) / lineHeight;
}

QString TinstListingPrinter::paddedLine(const QStringList &cells, const QList<int> &widths)
{
    QString line;
    for (qsizetype c = 0; c < widths.size(); ++c) {
        bool last = c == widths.size() - 1;
        line += cells.value(c).leftJustified(widths[c] + (last ? 0 : 2), QLatin1Char(' '));
    }
    return line;
}

bool TinstListingPrinter::print(QPrinter &printer, const QList<QStringList> &rows)
{
    if (rows.isEmpty())
        return false;
    QList<int> widths(rows.front().size(), 0);
    for (const QStringList &row : rows)
        for (qsizetype c = 0; c < widths.size(); ++c)
            widths[c] = std::max(widths[c], int(row.value(c).size()));

    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const TprintFonts fonts(PointSize);
    painter.setFont(fonts.regular);

    const int pageWidth = painter.device()->width();
    const int height = lineHeight(painter);
    const int perPage = linesPerPage(painter.device()->height(), height);
    auto drawLine = [&](int line, const QFont &font, const QString &text) {
        painter.setFont(font);
        QRect box(Margin, Margin + line * height, pageWidth - Margin, height);
        painter.drawText(box, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                         visiblePart(text, painter.fontMetrics(), box.width()));
    };

    int lineCount = 0;
    for (qsizetype r = 1; r < rows.size(); ++r) {
        if (lineCount >= perPage) {
            printer.newPage();
            lineCount = 0;
        }
        if (lineCount == 0) {
            drawLine(0, fonts.bold, QStringLiteral("KT930pc Instruction Listing"));
            lineCount = 2;
            drawLine(lineCount++, fonts.header, paddedLine(rows.front(), widths));
        }
        drawLine(lineCount++, fonts.regular, paddedLine(rows[r], widths));
    }
    return painter.end();
}

QList<QStringList> TinstListingPrinter::rowsOf(const QAbstractItemModel &list)
{
    QList<QStringList> rows;
    QStringList header;
    for (int c = 0; c < list.columnCount(); ++c)
        header << list.headerData(c, Qt::Horizontal).toString();
    rows << header;
    for (int r = 0; r < list.rowCount(); ++r) {
        QStringList row;
        for (int c = 0; c < list.columnCount(); ++c)
            row << list.index(r, c).data().toString();
        rows << row;
    }
    return rows;
}

bool TinstListingPrinter::print(QPrinter &printer, const QAbstractItemModel &list)
{
    return print(printer, rowsOf(list));
}
