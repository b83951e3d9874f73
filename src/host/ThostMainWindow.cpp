#include "ThostMainWindow.h"
#include <QDir>
#include <QEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

ThostMainWindow::ThostMainWindow(const QString &appDir)
{
    setWindowTitle(QStringLiteral("KT930 Plus PC"));
    fitToScreen();
    m_container = new QWidget(this);
    m_container->setObjectName(QStringLiteral("container"));
    m_containerLayout = new QVBoxLayout(m_container);
    m_containerLayout->setContentsMargins(0, 0, 0, 0);
    setCentralWidget(m_container);

    m_mainView = new QWidget(m_container);
    m_mainView->setObjectName(QStringLiteral("mainView"));
    m_buttonLayout = new QVBoxLayout(m_mainView);
    auto *title = new QLabel(QStringLiteral("KT930 Plus Safety Analyzer"), m_mainView);
    QFont font = title->font();
    font.setPixelSize(16);
    font.setBold(true);
    title->setFont(font);
    m_buttonLayout->addWidget(title);
    m_containerLayout->addWidget(m_mainView);

    loadPlugins(QDir(appDir).filePath(QStringLiteral("Plugins")));
    if (m_plugins.empty())
        m_buttonLayout->addWidget(new QLabel(QStringLiteral("No plug-ins were found in %1.").arg(QDir(appDir).filePath(QStringLiteral("Plugins"))), m_mainView));
    m_buttonLayout->addStretch();
}

ThostMainWindow::~ThostMainWindow()
{
    // Frames first: their code lives in the libraries unloaded after them.
    for (Plugin &plugin : m_plugins)
        delete plugin.frame.data();
    while (!m_plugins.empty())
        m_plugins.pop_back();
}

// The frame's design size, but never more than the screen leaves free: with a
// large scale factor the design size is taller than the screen.
void ThostMainWindow::fitToScreen()
{
    const QRect available = screen()->availableGeometry();
    // Room for the title bar and borders, which the window system adds outside.
    const QSize decoration(16, 48);
    resize(QSize(820, 620).boundedTo(available.size() - decoration));
    move(available.topLeft() + QPoint((available.width() - width()) / 2, (available.height() - height() - decoration.height()) / 2));
}

void ThostMainWindow::report(const QString &text)
{
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Plug-in Error"), text);
    box.setWindowModality(Qt::ApplicationModal);
    box.exec();
}

void ThostMainWindow::loadPlugins(const QString &folder)
{
    const QStringList files = QDir(folder).entryList({QStringLiteral("*.so")}, QDir::Files, QDir::Name);
    for (const QString &file : files) {
        Plugin plugin;
        plugin.module = std::make_unique<TpluginModule>(QDir(folder).filePath(file));
        QString error;
        if (!plugin.module->load(error)) {
            report(QStringLiteral("The plug-in %1 could not be loaded.\n%2").arg(file, error));
            continue;
        }
        plugin.hostInfo = std::make_unique<TPluginHostInfo>();
        plugin.hostInfo->mainView = m_mainView;
        plugin.hostInfo->container = m_container;
        if (plugin.module->setup(plugin.hostInfo.get(), this) != 0) {
            report(QStringLiteral("The plug-in %1 refused the host's set-up.").arg(file));
            continue;
        }
        auto *button = new QPushButton(plugin.module->buttonCaption(), m_mainView);
        button->setObjectName(QStringLiteral("plugin%1").arg(m_plugins.size()));
        button->setMinimumSize(200, 60);
        const int index = int(m_plugins.size());
        connect(button, &QPushButton::clicked, this, [this, index] { showPlugin(index); });
        m_buttonLayout->addWidget(button);
        m_plugins.push_back(std::move(plugin));
    }
}

void ThostMainWindow::showPlugin(int index)
{
    Plugin &plugin = m_plugins[std::size_t(index)];
    if (plugin.frame) {
        plugin.frame->ReloadData();
    } else {
        Tkt930Frame *frame = plugin.module->createMainForm();
        if (!frame) {
            report(QStringLiteral("The plug-in %1 could not create its window.").arg(plugin.module->displayName()));
            return;
        }
        plugin.frame = frame;
        frame->setParent(m_container);
        frame->installEventFilter(this);
        m_containerLayout->addWidget(frame);
    }
    m_container->setUpdatesEnabled(false);
    m_mainView->hide();
    plugin.frame->show();
    m_container->setUpdatesEnabled(true);
}

bool ThostMainWindow::eventFilter(QObject *watched, QEvent *event)
{
    // A frame that hid itself without handing the view back still returns the user to the buttons.
    if (event->type() == QEvent::HideToParent && !m_mainView->isVisible()) {
        for (const Plugin &plugin : m_plugins)
            if (plugin.frame == watched)
                m_mainView->show();
    }
    return QMainWindow::eventFilter(watched, event);
}
