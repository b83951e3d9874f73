#include "THelpWindow.h"
#include "THelpBrowser.h"
#include <QAction>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QScreen>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace {
const QSize PreferredSize(720, 560);
// Title bar and borders: the window system adds them only once the window is shown.
const QMargins Decoration(8, 40, 8, 8);

// The action carries the shortcut, so that a key goes back at once (a button's own
// shortcut clicks it only after its press animation).
QToolButton *historyButton(QWidget *window, const char *name, const QString &text, QStyle::StandardPixmap icon,
                           Qt::Key arrow)
{
    auto *action = new QAction(window->style()->standardIcon(icon), text, window);
    action->setShortcut(QKeySequence(Qt::ALT | arrow));
    action->setToolTip(QStringLiteral("%1 (%2)").arg(text, action->shortcut().toString(QKeySequence::NativeText)));
    action->setEnabled(false);
    window->addAction(action);
    auto *button = new QToolButton(window);
    button->setObjectName(QString::fromLatin1(name));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setDefaultAction(action);
    return button;
}
} // namespace

THelpWindow::THelpWindow(const std::filesystem::path &helpFile, const QString &topic)
    : m_browser(new THelpBrowser(helpFile, topic, this)),
      m_back(historyButton(this, "btnBack", QStringLiteral("Back"), QStyle::SP_ArrowBack, Qt::Key_Left)),
      m_forward(historyButton(this, "btnForward", QStringLiteral("Forward"), QStyle::SP_ArrowForward, Qt::Key_Right))
{
    setAttribute(Qt::WA_DeleteOnClose);
    // A help window never keeps the program running once its main window is closed.
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(QString::fromStdString(helpFile.stem().string()) + QStringLiteral(" Help"));

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_back);
    buttons->addWidget(m_forward);
    buttons->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(buttons);
    layout->addWidget(m_browser);
    setFocusProxy(m_browser);

    connect(m_back->defaultAction(), &QAction::triggered, m_browser, &QTextBrowser::backward);
    connect(m_forward->defaultAction(), &QAction::triggered, m_browser, &QTextBrowser::forward);
    connect(m_browser, &QTextBrowser::backwardAvailable, m_back->defaultAction(), &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, m_forward->defaultAction(), &QAction::setEnabled);
}

THelpWindow::~THelpWindow() = default;

bool THelpWindow::topicLoaded() const
{
    return m_browser->topicLoaded();
}

QString THelpWindow::toPlainText() const
{
    return m_browser->toPlainText();
}

void THelpWindow::showTopic(QPointer<THelpWindow> &window, const std::filesystem::path &helpFile,
                            const QString &topic, QWidget *modalOwner, QWidget *asker)
{
    if (!window) {
        window = new THelpWindow(helpFile, topic);
        if (modalOwner)
            window->setParent(modalOwner, Qt::Window);
        window->placeOver(asker ? asker : modalOwner);
    }
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
}

QRect THelpWindow::placement(const QRect &askerFrame, const QRect &available)
{
    const QRect free = available.marginsRemoved(Decoration);
    QRect placed(QPoint(), PreferredSize.boundedTo(free.size()));
    placed.moveCenter(askerFrame.center());
    placed.moveLeft(std::clamp(placed.left(), free.left(), free.right() + 1 - placed.width()));
    placed.moveTop(std::clamp(placed.top(), free.top(), free.bottom() + 1 - placed.height()));
    return placed;
}

void THelpWindow::placeOver(const QWidget *asker)
{
    const QWidget *anchor = asker ? asker->window() : nullptr;
    QScreen *screen = anchor ? anchor->screen() : nullptr;
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect available = screen->availableGeometry();
    setGeometry(placement(anchor ? anchor->frameGeometry() : available, available));
}
