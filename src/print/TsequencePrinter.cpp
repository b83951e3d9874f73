#include "TsequencePrinter.h"
#include "TinstListingPrinter.h"
#include "TprintFonts.h"
#include <QFont>
#include <QPainter>
#include <QPrinter>
#include <QStringDecoder>
#include <algorithm>

namespace {
constexpr int PointSize = 10;

// The data set's texts are Windows-1252.
QString decoded(const std::string &bytes)
{
    QStringDecoder decoder("windows-1252");
    if (!decoder.isValid())
        return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    return decoder.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
}
}

QStringList TsequencePrinter::headingLines(const TsequenceReport &report)
{
    return {decoded(report.date),
            QStringLiteral("KT930 Plus Safety Analyzer"),
            QStringLiteral("Autosequences"),
            QString(),
            QStringLiteral("AutoSequence %1 - %2").arg(decoded(report.title1), decoded(report.title2)),
            QStringLiteral("Port: %1").arg(report.port),
            QStringLiteral("Baud Rate: %1 Baud").arg(report.baudRate),
            QString()};
}

QList<QStringList> TsequencePrinter::tableRows(const TsequenceReport &report)
{
    QList<QStringList> rows{{QStringLiteral("No."), QStringLiteral("Category"), QStringLiteral("Op Code"), QStringLiteral("Command")}};
    int number = 0;
    for (const auto &cells : report.rows)
        rows.append({QStringLiteral("%1.").arg(++number), decoded(cells[0]), decoded(cells[1]), decoded(cells[2])});
    return rows;
}

bool TsequencePrinter::print(QPrinter &printer, const std::vector<TsequenceReport> &reports)
{
    QPainter painter;
    if (reports.empty() || !painter.begin(&printer))
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
    for (const TsequenceReport &report : reports) {
        if (!first && !printer.newPage())
            return false;
        first = false;
        const QStringList heading = headingLines(report);
        for (int line = 0; line < heading.size(); ++line)
            drawLine(line, line == 1 || line == 2 ? fonts.bold : fonts.regular, heading[line]);

        const QList<QStringList> rows = tableRows(report);
        QList<int> widths(rows.front().size(), 0);
        for (const QStringList &row : rows)
            for (qsizetype c = 0; c < widths.size(); ++c)
                widths[c] = std::max(widths[c], int(row[c].size()));
        const QString columnHeader = TinstListingPrinter::paddedLine(rows.front(), widths);
        int line = int(heading.size());
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
