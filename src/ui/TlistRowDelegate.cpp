#include "TlistRowDelegate.h"
#include <QPainter>
#include <algorithm>

QColor TlistRowDelegate::fontColour(const QString &text, bool selected)
{
    if (text == QLatin1String("<unused>"))
        return QColor(192, 192, 192);
    return selected ? QColor(255, 255, 255) : QColor(0, 0, 0);
}

int TlistRowDelegate::numberWidth(const QFontMetrics &metrics, int rowCount)
{
    const qsizetype digits = std::max<qsizetype>(2, QString::number(rowCount).size());
    return metrics.horizontalAdvance(QString(digits, QLatin1Char('8')) + QStringLiteral(". "));
}

void TlistRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool selected = option.state & QStyle::State_Selected;
    const QString text = index.data(Qt::DisplayRole).toString();
    painter->save();
    painter->fillRect(option.rect, selected ? option.palette.highlight() : option.palette.base());
    painter->setFont(option.font);
    painter->setPen(fontColour(text, selected));
    const int numberWidth =
        TlistRowDelegate::numberWidth(option.fontMetrics, index.model() ? index.model()->rowCount() : 0);
    QRect rect = option.rect;
    painter->drawText(rect, Qt::AlignLeft | Qt::AlignTop, QStringLiteral("%1. ").arg(index.row() + 1));
    rect.setLeft(rect.left() + numberWidth);
    painter->drawText(rect, Qt::AlignLeft | Qt::AlignTop, text);
    painter->restore();
}

QSize TlistRowDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(16); // fixed row height
    return size;
}
