#pragma once
// The checkitem listing: a fixed-pitch page layout on any QPrinter (a real printer
// or a PDF file), used by the editor and by kt930ctl.
#include <QList>
#include <QStringList>

class QAbstractItemModel;
class QPainter;
class QPrinter;

class TinstListingPrinter {
public:
    // rows[0] is the header row; rows[1..] are the grid's data rows in grid order (an
    // empty list is one row of four empty cells). Returns false when the printer could
    // not be started.
    static bool print(QPrinter &printer, const QList<QStringList> &rows);
    // The rows of a list as it shows them: its header texts, then its display texts.
    static bool print(QPrinter &printer, const QAbstractItemModel &list);
    static QList<QStringList> rowsOf(const QAbstractItemModel &list);

    // Sets a printer up to write an A4 PDF file at 600 dpi, the whole page paintable.
    static void preparePdf(QPrinter &printer, const QString &fileName);

    static constexpr int Margin = 200; // device units, left and top
    static constexpr int PdfResolution = 600;
    // The text whose height, plus 10, is a line's height.
    static const char *sampleText();
    // A line's height with the painter's current font, and how many lines fit a page.
    static int lineHeight(QPainter &painter);
    static int linesPerPage(int pageHeight, int lineHeight);
    // The cells padded to width + 2 (the last one to its width) and joined.
    static QString paddedLine(const QStringList &cells, const QList<int> &widths);
};
