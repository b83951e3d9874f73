#include "TtablePagePrinter.h"
#include "TinstListingPrinter.h"
#include "TprintFonts.h"
#include <QFont>
#include <QPainter>
#include <QPrinter>
#include <QStringDecoder>
#include <algorithm>

namespace {
constexpr int PointSize = 10;
}

// The data set's texts are Windows-1252.
QString TtablePagePrinter::decoded(const std::string &bytes)
{
    QStringDecoder decoder("windows-1252");
    if (!decoder.isValid())
        return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    return decoder.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
}

bool TtablePagePrinter::print(QPrinter &printer, const QList<TtablePage> &pages)
{
    QPainter painter;
    if (pages.empty() || !painter.begin(&printer))
        return false;
    const TprintFonts fonts(PointSize);
    painter.setFont(fonts.regular);

    const int width = painter.device()->width() - 2 * TinstListingPrinter::Margin;
    const int height = TinstListingPrinter::lineHeight(painter);
    const int perPage = TinstListingPrinter::linesPerPage(painter.device()->height(), height);
    auto drawLine = [&](int line, const QFont &font, const QString &text) {
        painter.setFont(font);
        const QRect box(TinstListingPrinter::Margin, TinstListingPrinter::Margin + line * height, width, height);
        painter.drawText(box, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, text);
    };

    bool first = true;
    for (const TtablePage &page : pages) {
        if (!first && !printer.newPage())
            return false;
        first = false;
        for (int line = 0; line < page.heading.size(); ++line)
            drawLine(line, page.boldLines.contains(line) ? fonts.bold : fonts.regular, page.heading[line]);

        const QList<QStringList> &rows = page.rows;
        QList<int> widths(rows.front().size(), 0);
        for (const QStringList &row : rows)
            for (qsizetype c = 0; c < widths.size(); ++c)
                widths[c] = std::max(widths[c], int(row[c].size()));
        const QString columnHeader = TinstListingPrinter::paddedLine(rows.front(), widths);
        int line = int(page.heading.size());
        drawLine(line++, fonts.header, columnHeader);
        for (qsizetype r = 1; r < rows.size(); ++r) {
            // A small page: the rest of the table goes on, under its header, on the next.
            if (line >= perPage) {
                if (!printer.newPage())
                    return false;
                line = 0;
                drawLine(line++, fonts.header, columnHeader);
            }
            drawLine(line++, fonts.regular, TinstListingPrinter::paddedLine(rows[r], widths));
        }
    }
    return painter.end();
}
