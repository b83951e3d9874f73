#include "TinstGridDelegate.h"
#include <QPainter>

void TinstGridDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    if (index.row() != index.model()->rowCount() - 1)
        return;
    const QRect &cell = option.rect;
    painter->fillRect(QRect(cell.left(), cell.bottom() - LastRowLine + 1, cell.width(), LastRowLine),
                      option.palette.color(QPalette::WindowText));
}
