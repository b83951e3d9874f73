#include "TinstGridHeader.h"
#include <QPainter>
#include <QStyleOptionHeader>

// The sort pictures live in this library's resources, which a static link drops
// unless they are asked for by name.
static void initSortPictures()
{
    Q_INIT_RESOURCE(instEdit);
}

namespace {
QPixmap loadSortPicture(bool ascending)
{
    initSortPictures();
    return QPixmap(ascending ? QStringLiteral(":/instEdit/PIC_SORT_UP") : QStringLiteral(":/instEdit/PIC_SORT_DOWN"));
}
}

TinstGridHeader::TinstGridHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(true);
    setHighlightSections(false);
    setStretchLastSection(true);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void TinstGridHeader::setSortPicture(int column, const QPixmap &picture)
{
    m_column = column;
    m_picture = picture;
    viewport()->update();
}

void TinstGridHeader::showSortState(TsortState sort)
{
    if (sort.column() < 0)
        setSortPicture(-1, QPixmap());
    else
        setSortPicture(sort.column(), loadSortPicture(sort.ascending()));
}

int TinstGridHeader::sortPictureWidth()
{
    return loadSortPicture(true).width();
}

void TinstGridHeader::paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const
{
    if (!rect.isValid())
        return;
    QStyleOptionHeader option;
    initStyleOption(&option);
    option.rect = rect;
    option.section = logicalIndex;
    option.state |= isEnabled() ? QStyle::State_Enabled : QStyle::State_None;
    style()->drawControl(QStyle::CE_HeaderSection, &option, painter, this);

    int captionLeft = rect.left() + CaptionIndent;
    if (logicalIndex == m_column && !m_picture.isNull()) {
        const int top = rect.top() + (rect.height() - m_picture.height()) / 2;
        painter->drawPixmap(rect.left(), top, m_picture);
        captionLeft = rect.left() + m_picture.width() + CaptionGap;
    }
    const QString caption = model() ? model()->headerData(logicalIndex, orientation()).toString() : QString();
    const QRect captionRect(captionLeft, rect.top(), rect.right() - captionLeft, rect.height());
    style()->drawItemText(painter, captionRect, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(), caption,
                          QPalette::ButtonText);
}
