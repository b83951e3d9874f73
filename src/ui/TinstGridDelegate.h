#pragma once
// Cells of the checkitem grid: drawn as usual, with a two-pixel line under the last row.
#include <QStyledItemDelegate>

class TinstGridDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int LastRowLine = 2;
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
