#include "TchecklistPrinter.h"
#include "TtablePagePrinter.h"

QStringList TchecklistPrinter::headingLines(const TchecklistReport &report)
{
    return {TtablePagePrinter::decoded(report.date),
            QStringLiteral("KT930 Plus Safety Analyzer"),
            QStringLiteral("Checklists"),
            QString(),
            QStringLiteral("Checklist: %1").arg(TtablePagePrinter::decoded(report.title)),
            QStringLiteral("Steps: %1").arg(report.rows.size()),
            QString()};
}

QList<QStringList> TchecklistPrinter::tableRows(const TchecklistReport &report)
{
    QList<QStringList> rows{
        {QStringLiteral("No."), QStringLiteral("Category"), QStringLiteral("Op Code"), QStringLiteral("Command")}};
    int number = 0;
    for (const auto &cells : report.rows)
        rows.append({QStringLiteral("%1.").arg(++number), TtablePagePrinter::decoded(cells[0]),
                     TtablePagePrinter::decoded(cells[1]), TtablePagePrinter::decoded(cells[2])});
    return rows;
}

bool TchecklistPrinter::print(QPrinter &printer, const std::vector<TchecklistReport> &reports)
{
    QList<TtablePage> pages;
    for (const TchecklistReport &report : reports)
        pages.append({headingLines(report), {1, 2}, tableRows(report)});
    return TtablePagePrinter::print(printer, pages);
}
