#pragma once
// The autosequence printout: one page per autosequence, in the listing's fixed-pitch
// layout, on any QPrinter (a real printer or a PDF file). The editor prints one,
// kt930ctl one or a whole binder.
#include "TsequenceReport.h"
#include <QList>
#include <QStringList>
#include <vector>

class QPrinter;

class TsequencePrinter {
public:
    // Returns false when the printer could not be started or finished.
    static bool print(QPrinter &printer, const std::vector<TsequenceReport> &reports);

    // The page's lines before the table, and the table (header row first), as printed.
    static QStringList headingLines(const TsequenceReport &report);
    static QList<QStringList> tableRows(const TsequenceReport &report);
};
