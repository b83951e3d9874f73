#pragma once
// The page layout the autosequence and checklist printouts share: heading lines,
// then a fixed-pitch table under its header row, continued under the header on the
// next page when it runs over.
#include <QList>
#include <QStringList>
#include <set>
#include <string>

class QPrinter;

struct TtablePage {
    QStringList heading;
    std::set<int> boldLines; // heading lines printed in bold
    QList<QStringList> rows; // the header row first
};

class TtablePagePrinter {
public:
    // One page (or more, for a long table) per entry. False when the printer could
    // not be started or finished.
    static bool print(QPrinter &printer, const QList<TtablePage> &pages);
    // A Windows-1252 text of the data set as the page shows it.
    static QString decoded(const std::string &bytes);
};
