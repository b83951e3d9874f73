#include "TsequencePrinter.h"
#include "TtablePagePrinter.h"

namespace {
QString decoded(const std::string &bytes)
{
    return TtablePagePrinter::decoded(bytes);
}
} // namespace

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
    QList<QStringList> rows{
        {QStringLiteral("No."), QStringLiteral("Category"), QStringLiteral("Op Code"), QStringLiteral("Command")}};
    int number = 0;
    for (const auto &cells : report.rows)
        rows.append({QStringLiteral("%1.").arg(++number), decoded(cells[0]), decoded(cells[1]), decoded(cells[2])});
    return rows;
}

bool TsequencePrinter::print(QPrinter &printer, const std::vector<TsequenceReport> &reports)
{
    QList<TtablePage> pages;
    for (const TsequenceReport &report : reports)
        pages.append({headingLines(report), {1, 2}, tableRows(report)});
    return TtablePagePrinter::print(printer, pages);
}
