#pragma once
// Draws a row of the physical inspection or checklist list: "N. " in a column as wide as
// the widest number of the list ("88. " at least, "888. " for 500 checklists), then the
// row text; "<unused>" rows in silver.
#include <QStyledItemDelegate>

class TlistRowDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    static QColor fontColour(const QString &text, bool selected);
    static int numberWidth(const QFontMetrics &metrics, int rowCount);
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
