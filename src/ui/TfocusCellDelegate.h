#pragma once
// Cells of a grid that selects whole rows: the current cell of a grid with the
// keyboard focus gets a frame, so that the focus shows inside a highlighted row too.
#include <QStyledItemDelegate>

class TfocusCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int FrameWidth = 2;
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
