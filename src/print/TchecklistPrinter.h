#pragma once
// The checklist printout: one page per checklist, laid out as the autosequence
// printout. The checklist editor prints one, kt930ctl one or every used one.
#include "TchecklistReport.h"
#include <QList>
#include <QStringList>
#include <vector>

class QPrinter;

class TchecklistPrinter {
public:
    // Returns false when the printer could not be started or finished.
    static bool print(QPrinter &printer, const std::vector<TchecklistReport> &reports);

    // The page's lines before the table, and the table (header row first), as printed.
    static QStringList headingLines(const TchecklistReport &report);
    static QList<QStringList> tableRows(const TchecklistReport &report);
};
