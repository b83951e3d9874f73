#pragma once
// Draws a row of the physical inspection or checklist list: "N. " in a column as wide as
// "88. ", then the row text; "<unused>" rows in silver.
#include <QStyledItemDelegate>

class TlistRowDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    static QColor fontColour(const QString &text, bool selected);
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
