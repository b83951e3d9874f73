#include "TfocusCellDelegate.h"
#include <QPainter>

void TfocusCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    // The style's own focus rectangle is left out: some styles draw it only after a
    // Tab and in a colour that vanishes on the selection.
    QStyleOptionViewItem plain = option;
    plain.state &= ~QStyle::State_HasFocus;
    QStyledItemDelegate::paint(painter, plain, index);
    if (!(option.state & QStyle::State_HasFocus))
        return;
    const QColor colour = option.palette.color(
        option.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text);
    const QRect &cell = option.rect;
    painter->fillRect(QRect(cell.left(), cell.top(), cell.width(), FrameWidth), colour);
    painter->fillRect(QRect(cell.left(), cell.bottom() + 1 - FrameWidth, cell.width(), FrameWidth), colour);
    painter->fillRect(QRect(cell.left(), cell.top(), FrameWidth, cell.height()), colour);
    painter->fillRect(QRect(cell.right() + 1 - FrameWidth, cell.top(), FrameWidth, cell.height()), colour);
}
