#include "ThostMainWindow.h"
#include "THelpWindow.h"
#include "TdataFolderCopy.h"
#include "TdataFolderLock.h"
#include "TdataFolderSession.h"
#include "TanalyzerComparison.h"
#include "TguiMessageSink.h"
#include "ThostDashboard.h"
#include "TrestorePointDialog.h"
#include "TrestorePoints.h"
#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdio>

#ifndef KT930_VERSION
#define KT930_VERSION "0"
#endif

namespace {
const QString ProgramName = QStringLiteral("KT930 Plus PC");
const QString RestoreCaption = QStringLiteral("Restore Previous Data Set");
const QString OpenCaption = QStringLiteral("Open Data Folder");
const QString SaveAsCaption = QStringLiteral("Save Data Folder As");
const QString ReturnFirstText =
    QStringLiteral("Return to the main window first, so that the open view saves its changes.");

QString text(const std::filesystem::path &path)
{
    return QString::fromStdString(path.string());
}

// A path as a menu or button shows it: an '&' in it is no shortcut.
QString label(const std::filesystem::path &path)
{
    return text(path).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

// The same folder through a link or another spelling is no switch.
bool sameFolder(const std::filesystem::path &a, const std::filesystem::path &b)
{
    std::error_code ec;
    return a == b || std::filesystem::equivalent(TappDir::dataFolder(a), TappDir::dataFolder(b), ec);
}

QString settingsFile(const TappFolders &folders)
{
    return text(folders.application / "KT930pc.ini");
}

void tell(ThostMainWindow::Reporting reporting, QMessageBox::Icon icon, const QString &caption, const QString &text)
{
    if (reporting == ThostMainWindow::Reporting::Console) {
        std::fprintf(stderr, "kt930pc: %s\n", text.toLocal8Bit().constData());
        return;
    }
    QMessageBox box(icon, caption, text);
    box.setWindowModality(Qt::ApplicationModal);
    box.exec();
}
} // namespace

ThostMainWindow::ThostMainWindow(const TappFolders &folders, Reporting reporting,
                                 std::unique_ptr<TdataFolderSession> session)
    : m_folders(folders), m_reporting(reporting), m_session(std::move(session)), m_recent(folders.hostSettings)
{
    // One spelling of the folder, so that the recent list knows it.
    m_folders.application = TrecentFolders::normal(std::filesystem::absolute(m_folders.application));
    setWindowIcon(QIcon(QStringLiteral(":/kt930pc.svg")));
    restoreWindowGeometry();
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

    const QString pluginFolder = text(folders.plugins);
    loadPlugins(pluginFolder);
    if (m_plugins.empty())
        m_buttonLayout->addWidget(
            new QLabel(QStringLiteral("No plug-ins were found in %1.").arg(pluginFolder), m_mainView));
    m_dashboard = new ThostDashboard(m_mainView);
    connect(m_dashboard, &ThostDashboard::folderChosen, this,
            [this](const QString &folder) { openDataFolder(folder.toStdString()); });
    connect(m_dashboard, &ThostDashboard::verifyRequested, this, &ThostMainWindow::compareWithAnalyzer);
    m_buttonLayout->addWidget(m_dashboard);
    m_buttonLayout->addStretch();
    // The overview is read again whenever the main view comes back.
    m_mainView->installEventFilter(this);
    createMenus();

    // A permanent widget: transient status messages never hide which data is in use.
    m_folderLabel = new QLabel(this);
    m_folderLabel->setObjectName(QStringLiteral("applicationFolder"));
    statusBar()->addWidget(m_folderLabel, 1);
    std::string why;
    m_recent.add(m_folders.application, why); // a list that cannot be written costs nothing now
    showFolder();
}

void ThostMainWindow::showFolder()
{
    const QString folder = text(m_folders.application);
    setWindowTitle(ProgramName + QStringLiteral(" - ") + folder);
    m_folderLabel->setText(QStringLiteral("Data folder: %1").arg(folder));
    m_folderLabel->setToolTip(QString::fromStdString(m_folders.reason));
    std::vector<std::filesystem::path> others;
    for (const std::filesystem::path &recent : m_recent.folders())
        if (recent != m_folders.application)
            others.push_back(recent);
    m_recentMenu->clear();
    for (const std::filesystem::path &recent : others)
        m_recentMenu->addAction(QStringLiteral("&%1  %2").arg(m_recentMenu->actions().size() + 1).arg(label(recent)),
                                this, [this, recent] {
                                    // Queued: the switch rebuilds this menu, and with it the entry that was chosen.
                                    QMetaObject::invokeMethod(
                                        this, [this, recent] { openDataFolder(recent); }, Qt::QueuedConnection);
                                });
    m_recentMenu->setEnabled(!others.empty());
    m_dashboard->refresh(m_folders.application, others);
}

void ThostMainWindow::createMenus()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    QAction *open = file->addAction(QStringLiteral("&Open Data Folder..."), this, &ThostMainWindow::chooseDataFolder);
    open->setObjectName(QStringLiteral("actionOpenFolder"));
    open->setShortcut(QKeySequence::Open);
    file->addAction(QStringLiteral("Save Data Folder &As..."), this, &ThostMainWindow::chooseSaveTarget)
        ->setObjectName(QStringLiteral("actionSaveFolderAs"));
    m_recentMenu = file->addMenu(QStringLiteral("Recent Data &Folders"));
    m_recentMenu->setObjectName(QStringLiteral("menuRecent"));
    file->addSeparator();
    file->addAction(QStringLiteral("&Restore Previous Data Set..."), this, &ThostMainWindow::restorePreviousDataSet)
        ->setObjectName(QStringLiteral("actionRestore"));
    file->addAction(QStringLiteral("&Compare With KT930..."), this, &ThostMainWindow::compareWithAnalyzer)
        ->setObjectName(QStringLiteral("actionCompare"));
    file->addSeparator();
    QAction *quit = file->addAction(QStringLiteral("&Quit"), this, &QWidget::close);
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QKeySequence::Quit);

    QMenu *help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->setObjectName(QStringLiteral("menuHelp"));
    const QDir helpFolder(text(m_folders.help));
    for (const QString &file : helpFolder.entryList({QStringLiteral("*.qch")}, QDir::Files, QDir::Name)) {
        const std::filesystem::path path = m_folders.help / file.toStdString();
        help->addAction(QFileInfo(file).completeBaseName() + QStringLiteral(" Help"), this,
                        [this, path] { THelpWindow::showTopic(m_helpWindow, path, QString(), nullptr, this); });
    }
    if (!help->isEmpty())
        help->addSeparator();
    help->addAction(QStringLiteral("&About %1").arg(ProgramName), this, &ThostMainWindow::showAbout)
        ->setObjectName(QStringLiteral("actionAbout"));
    help->addAction(QStringLiteral("About &Qt"), qApp, &QApplication::aboutQt)
        ->setObjectName(QStringLiteral("actionAboutQt"));
}

QString ThostMainWindow::aboutText()
{
    return QStringLiteral("<h3>%1 %2</h3>"
                          "<p>Edits the test content of the KT930 Plus safety analyzer and moves it to and from "
                          "the analyzer over USB, a serial port or Ethernet.</p>"
                          "<p>Built with these libraries, each under its own licence:</p><ul>"
                          "<li>Qt %3: GNU LGPL version 3</li>"
                          "<li>libftdi1: GNU LGPL version 2.1</li>"
                          "<li>libusb-1.0: GNU LGPL version 2.1</li>"
                          "<li>Boost: Boost Software License 1.0</li></ul>")
        .arg(ProgramName, QStringLiteral(KT930_VERSION), QString::fromLatin1(qVersion()));
}

void ThostMainWindow::showAbout()
{
    QMessageBox::about(this, QStringLiteral("About %1").arg(ProgramName), aboutText());
}

void ThostMainWindow::prepareDataFolder(const TappFolders &folders, Reporting reporting)
{
    std::string message;
    const TappDir::Seeding seeding = TappDir::seed(folders, message);
    if (seeding == TappDir::Seeding::Present)
        return;
    tell(reporting, seeding == TappDir::Seeding::Created ? QMessageBox::Information : QMessageBox::Warning, ProgramName,
         QString::fromStdString(message));
}

bool ThostMainWindow::continueWithDataFolderInUse(const TdataFolderSession &session,
                                                  const std::filesystem::path &dataFolder, Reporting reporting)
{
    if (!session.inUse())
        return true;
    const QString process = session.holder() > 0 ? QStringLiteral(" (process %1)").arg(session.holder()) : QString();
    const QString warning = QStringLiteral("The data folder\n%1\nis in use by another KT930 program%2.\n\n"
                                           "Both may change the same files. Before each save this program checks for "
                                           "changes made by the other and asks which version to keep.")
                                .arg(text(dataFolder), process);
    if (reporting == Reporting::Console) {
        std::fprintf(stderr, "kt930pc: %s\n", warning.toLocal8Bit().constData());
        return true;
    }
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Data Folder In Use"),
                    warning + QStringLiteral("\n\nContinue anyway?"), QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    return box.exec() == QMessageBox::Yes;
}

// Compares what is on disk, so a shown view first saves through its own return and
// comes back afterwards.
void ThostMainWindow::compareWithAnalyzer()
{
    int shownPlugin = -1;
    if (!returnToMainView(shownPlugin, QStringLiteral("Compare With KT930")))
        return;
    TPluginHostInfo host;
    host.mainView = m_mainView;
    host.container = m_container;
    TanalyzerComparison::run(m_folders.application, host, TguiMessageSink::defaultSink(), this);
    if (shownPlugin >= 0)
        showPlugin(shownPlugin);
}

void ThostMainWindow::restorePreviousDataSet()
{
    if (m_mainView->isHidden()) {
        QMessageBox::information(this, RestoreCaption, ReturnFirstText);
        return;
    }
    const std::filesystem::path dataFolder = TappDir::dataFolder(m_folders.application);
    TrestorePoints restorePoints(dataFolder);
    const std::vector<TrestorePoint> points = restorePoints.list();
    if (points.empty()) {
        QMessageBox::information(
            this, RestoreCaption,
            QStringLiteral("There are no restore points in %1.\nA download, a sync or an import keeps "
                           "the files it replaces as one.")
                .arg(text(dataFolder)));
        return;
    }
    TrestorePointDialog dialog(points, this);
    if (dialog.exec() != QDialog::Accepted || dialog.chosenNumber() < 1)
        return;
    const TrestorePoint &chosen = points[std::size_t(dialog.chosenNumber() - 1)];
    const QString when = QString::fromStdString(chosen.time), action = QString::fromStdString(chosen.action);
    QMessageBox confirm(
        QMessageBox::Question, RestoreCaption,
        QStringLiteral("Put back the files that \"%1\" replaced on %2?\n\nThe current files are kept as "
                       "a restore point first, so this can be undone.")
            .arg(action, when),
        QMessageBox::Yes | QMessageBox::No, this);
    confirm.setDefaultButton(QMessageBox::No);
    if (confirm.exec() != QMessageBox::Yes)
        return;

    // Another program may have added a restore point while the user chose: find ours again under the lock.
    std::string why;
    bool restored = false;
    {
        TdataFolderLock lock(dataFolder);
        if (!lock.locked()) {
            why = lock.failure();
        } else {
            int number = 0;
            for (const TrestorePoint &point : restorePoints.list())
                if (point.folder == chosen.folder)
                    number = point.number;
            if (number == 0)
                why = "The restore point is no longer there.";
            else
                restored = restorePoints.restore(number, why);
        }
    }
    if (restored)
        QMessageBox::information(this, RestoreCaption,
                                 QStringLiteral("The files that \"%1\" replaced on %2 were put back.\nThe files they "
                                                "replaced are now restore point 1.")
                                     .arg(action, when));
    else
        QMessageBox::warning(
            this, RestoreCaption,
            QStringLiteral("The data set could not be restored.\n%1").arg(QString::fromStdString(why)));
}

ThostMainWindow::~ThostMainWindow()
{
    // Frames first: their code lives in the libraries unloaded after them.
    for (Plugin &plugin : m_plugins)
        delete plugin.frame.data();
    while (!m_plugins.empty())
        m_plugins.pop_back();
}

// The size and place of the last run, when they still fit on a screen (a screen
// may have gone away or shrunk since); else the design size fitted to the screen.
void ThostMainWindow::restoreWindowGeometry()
{
    const QByteArray saved =
        QSettings(settingsFile(m_folders), QSettings::IniFormat).value(QStringLiteral("HOST/geometry")).toByteArray();
    if (!saved.isEmpty() && restoreGeometry(saved)) {
        // Not shown yet, so the frame is not known: allow for one as fitToScreen does.
        const QRect framed = geometry().adjusted(-8, -40, 8, 8);
        const QScreen *target = QGuiApplication::screenAt(framed.center());
        if (target && target->availableGeometry().contains(framed))
            return;
    }
    fitToScreen();
}

void ThostMainWindow::closeEvent(QCloseEvent *event)
{
    QSettings settings(settingsFile(m_folders), QSettings::IniFormat);
    settings.setValue(QStringLiteral("HOST/geometry"), saveGeometry());
    QMainWindow::closeEvent(event);
}

// The frame's design size, but never more than the screen leaves free: with a
// large scale factor the design size is taller than the screen.
void ThostMainWindow::fitToScreen()
{
    const QRect available = screen()->availableGeometry();
    // Room for the title bar and borders, which the window system adds outside.
    const QSize decoration(16, 48);
    resize(QSize(820, 620).boundedTo(available.size() - decoration));
    move(available.topLeft() +
         QPoint((available.width() - width()) / 2, (available.height() - height() - decoration.height()) / 2));
}

void ThostMainWindow::report(const QString &text)
{
    ++m_pluginErrors;
    tell(m_reporting, QMessageBox::Warning, QStringLiteral("Plug-in Error"), text);
}

// The buttons follow the plug-ins' names, as the user reads them, not their file names.
void ThostMainWindow::loadPlugins(const QString &folder)
{
    const QStringList files = QDir(folder).entryList({QStringLiteral("*.so")}, QDir::Files, QDir::Name);
    std::vector<Plugin> loaded;
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
        loaded.push_back(std::move(plugin));
    }
    std::stable_sort(loaded.begin(), loaded.end(), [](const Plugin &a, const Plugin &b) {
        return a.module->displayName() < b.module->displayName();
    });
    for (Plugin &plugin : loaded) {
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
    if (watched == m_mainView && event->type() == QEvent::Show)
        showFolder();
    // A frame that hid itself without handing the view back still returns the user to the buttons.
    if (event->type() == QEvent::HideToParent && !m_mainView->isVisible()) {
        for (const Plugin &plugin : m_plugins)
            if (plugin.frame == watched)
                m_mainView->show();
    }
    return QMainWindow::eventFilter(watched, event);
}

// ---- data folders

void ThostMainWindow::tellFailure(const QString &caption, const QString &text)
{
    tell(m_reporting, QMessageBox::Warning, caption, text);
}

void ThostMainWindow::chooseDataFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(
        this, OpenCaption, text(m_folders.application.parent_path()), QFileDialog::DontUseNativeDialog);
    if (!folder.isEmpty())
        openDataFolder(folder.toStdString());
}

void ThostMainWindow::chooseSaveTarget()
{
    QFileDialog dialog(this, SaveAsCaption, text(m_folders.application.parent_path()));
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::ShowDirsOnly);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setLabelText(QFileDialog::FileName, QStringLiteral("New folder:"));
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        saveDataFolderAs(dialog.selectedFiles().first().toStdString());
}

// The host contract has the frame hand the main view back itself: its own return,
// which saves, is pressed, and the switch goes on only when the view came back.
bool ThostMainWindow::returnToMainView(int &shownPlugin, const QString &caption)
{
    shownPlugin = -1;
    for (std::size_t i = 0; i < m_plugins.size(); ++i) {
        Tkt930Frame *frame = m_plugins[i].frame;
        if (!frame || !frame->isVisible())
            continue;
        shownPlugin = int(i);
        if (auto *exit = frame->findChild<QAbstractButton *>(QStringLiteral("BtnExit")))
            exit->click();
        if (frame->isVisible() || !m_mainView->isVisible()) {
            tellFailure(caption, ReturnFirstText);
            return false;
        }
    }
    return true;
}

bool ThostMainWindow::openDataFolder(const std::filesystem::path &chosen)
{
    const std::filesystem::path folder = TrecentFolders::normal(std::filesystem::absolute(chosen));
    if (sameFolder(folder, m_folders.application))
        return true;
    std::error_code ec;
    if (!std::filesystem::is_directory(folder, ec)) {
        tellFailure(OpenCaption, QStringLiteral("The folder %1 is not there.").arg(text(folder)));
        return false;
    }
    if (!std::filesystem::is_directory(TappDir::dataFolder(folder), ec)) {
        const QString missing = QStringLiteral("The folder %1 holds no Data folder.").arg(text(folder));
        if (m_folders.defaults.empty()) {
            tellFailure(OpenCaption, missing + QStringLiteral("\nChoose a folder that holds one, or make a new one "
                                                              "from the data set in use with Save Data Folder As..."));
            return false;
        }
        QMessageBox ask(QMessageBox::Question, OpenCaption,
                        missing + QStringLiteral("\n\nCreate one from the shipped defaults?"),
                        QMessageBox::Yes | QMessageBox::No, this);
        if (ask.exec() != QMessageBox::Yes)
            return false;
        TappFolders seeded = m_folders;
        seeded.application = folder;
        std::string message;
        if (TappDir::seed(seeded, message) == TappDir::Seeding::Failed) {
            tellFailure(OpenCaption, QString::fromStdString(message));
            return false;
        }
    }
    int shownPlugin = -1;
    if (!returnToMainView(shownPlugin, OpenCaption) || !switchTo(folder))
        return false;
    if (shownPlugin >= 0)
        showPlugin(shownPlugin);
    return true;
}

bool ThostMainWindow::saveDataFolderAs(const std::filesystem::path &chosen)
{
    const std::filesystem::path folder = TrecentFolders::normal(std::filesystem::absolute(chosen));
    int shownPlugin = -1;
    if (!returnToMainView(shownPlugin, SaveAsCaption))
        return false;
    std::string why;
    if (!TdataFolderCopy::copy(m_folders.application, folder, why)) {
        tellFailure(SaveAsCaption,
                    QStringLiteral("The data set was not copied.\n%1\n\nThe data folder in use is still %2.")
                        .arg(QString::fromStdString(why), text(m_folders.application)));
    } else if (switchTo(folder)) {
        if (shownPlugin >= 0)
            showPlugin(shownPlugin);
        return true;
    }
    if (shownPlugin >= 0)
        showPlugin(shownPlugin);
    return false;
}

// The new folder is held before the old one is let go, so a decline keeps everything as it was.
bool ThostMainWindow::switchTo(const std::filesystem::path &folder)
{
    if (sameFolder(folder, m_folders.application))
        return true;
    const std::filesystem::path dataFolder = TappDir::dataFolder(folder);
    auto session = std::make_unique<TdataFolderSession>(dataFolder);
    if (!continueWithDataFolderInUse(*session, dataFolder, m_reporting))
        return false;
    m_session = std::move(session);
    m_folders.application = folder;
    m_folders.reason = "it was opened in this window";
    // The plug-ins find the data folder as every program does: through the process's environment.
    qputenv(TappDir::OpenedFolderVariable, QByteArray(folder.c_str()));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, text(folder));
    std::string why;
    if (!m_recent.add(folder, why))
        statusBar()->showMessage(QString::fromStdString(why), 10000);
    showFolder();
    return true;
}
