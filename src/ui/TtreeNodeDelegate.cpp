#include "TtreeNodeDelegate.h"

QColor TtreeNodeDelegate::fontColour(bool unusedChild, bool selected)
{
    if (unusedChild)
        return QColor(192, 192, 192);
    return selected ? QColor(255, 255, 255) : QColor(0, 0, 0);
}

void TtreeNodeDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const bool selected = option->state & QStyle::State_Selected;
    const QColor colour = fontColour(index.data(UnusedRole).toBool(), selected);
    option->palette.setColor(QPalette::Text, colour);
    option->palette.setColor(QPalette::HighlightedText, colour);
}
