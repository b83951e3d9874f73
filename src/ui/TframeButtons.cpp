#include "TframeButtons.h"
#include <QAbstractButton>
#include <QIcon>
#include <QStyle>

// Outside any namespace, as the macro requires; the resources live in a static library.
static void initFrameResources()
{
    Q_INIT_RESOURCE(frameIcons);
}

namespace {
// A question mark drawn for each size, so it stays legible at 16 px.
QIcon helpIcon()
{
    QIcon icon;
    for (int size : {16, 24, 32, 48})
        icon.addFile(QStringLiteral(":/icons/help-%1.png").arg(size), QSize(size, size));
    return icon;
}
} // namespace

void TframeButtons::decorate(QAbstractButton *upload, QAbstractButton *download, QAbstractButton *help,
                             QAbstractButton *exit)
{
    initFrameResources();
    upload->setIcon(upload->style()->standardIcon(QStyle::SP_ArrowUp));
    download->setIcon(download->style()->standardIcon(QStyle::SP_ArrowDown));
    help->setIcon(helpIcon());
    exit->setIcon(exit->style()->standardIcon(QStyle::SP_ArrowBack));
}
