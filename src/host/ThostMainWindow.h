#pragma once
// The host's main window: one button per plug-in found in the plug-in folder.
// A button swaps the main view for the plug-in's frame; the frame swaps back
// itself through the host record ("Return To Main Window"). Below the buttons an
// overview of the data folder in use. Menus open another data folder, save the data
// set as a new one, reopen a recent one, restore a previous data set, quit, show
// the help files, About and About Qt; the title and status line name the folder.
#include "AppDir.h"
#include "TdataFolderSession.h"
#include "TpluginModule.h"
#include "TrecentFolders.h"
#include <QMainWindow>
#include <QPointer>
#include <memory>
#include <vector>

class QLabel;
class QPushButton;
class QVBoxLayout;
class THelpWindow;
class ThostDashboard;

class ThostMainWindow : public QMainWindow {
    Q_OBJECT
public:
    // Boxes for a user; lines on stderr for a self-test, which nobody is there to answer.
    enum class Reporting { Boxes, Console };

    // session: the hold on the data folder that main() took; the window moves it along on a switch.
    explicit ThostMainWindow(const TappFolders &folders, Reporting reporting = Reporting::Boxes,
                             std::unique_ptr<TdataFolderSession> session = {});
    ~ThostMainWindow() override;

    QWidget *mainView() const { return m_mainView; }
    QWidget *container() const { return m_container; }
    int pluginCount() const { return int(m_plugins.size()); }
    int pluginErrors() const { return m_pluginErrors; }
    QString pluginPath(int index) const { return m_plugins[std::size_t(index)].module->path(); }
    QString pluginName(int index) const { return m_plugins[std::size_t(index)].module->displayName(); }

    void showPlugin(int index);
    void showAbout();
    // Puts back a restore point the user picks, after a confirmation; only from the main view,
    // so that no open frame holds unsaved edits of the files it replaces.
    void restorePreviousDataSet();
    // "Compare With KT930...": the data set on disk against what the analyzer holds.
    void compareWithAnalyzer();

    const std::filesystem::path &applicationFolder() const { return m_folders.application; }
    const TrecentFolders &recentFolders() const { return m_recent; }
    // Switches to another application folder: one without Data/ may be made from the
    // shipped defaults. An open frame saves as Return To Main Window does first and
    // re-reads afterwards. False, with the folder in use unchanged, when declined or failed.
    bool openDataFolder(const std::filesystem::path &chosen);
    // Copies the data set in use to a new or empty folder and switches to the copy.
    bool saveDataFolderAs(const std::filesystem::path &chosen);

    // Makes a missing per-user data folder from the shipped defaults and says where it is.
    static void prepareDataFolder(const TappFolders &folders, Reporting reporting = Reporting::Boxes);
    static QString aboutText();
    // Whether to go on when another program has the data folder open: a box asks
    // (Yes the default); a self-test only says so on stderr and goes on.
    static bool continueWithDataFolderInUse(const TdataFolderSession &session, const std::filesystem::path &dataFolder,
                                            Reporting reporting = Reporting::Boxes);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    struct Plugin {
        std::unique_ptr<TpluginModule> module;
        std::unique_ptr<TPluginHostInfo> hostInfo;
        QPointer<Tkt930Frame> frame;
    };
    void createMenus();
    void chooseDataFolder();
    void chooseSaveTarget();
    // The frame on show saves and hands the main view back; -1 when none was shown,
    // false when it did not come back.
    bool returnToMainView(int &shownPlugin, const QString &caption);
    bool switchTo(const std::filesystem::path &folder);
    void showFolder();
    void tellFailure(const QString &caption, const QString &text);
    void fitToScreen();
    void restoreWindowGeometry();
    void loadPlugins(const QString &folder);
    void report(const QString &text);

    TappFolders m_folders;
    Reporting m_reporting;
    int m_pluginErrors = 0;
    QWidget *m_container;
    QVBoxLayout *m_containerLayout;
    QWidget *m_mainView;
    QVBoxLayout *m_buttonLayout;
    std::vector<Plugin> m_plugins;
    QPointer<THelpWindow> m_helpWindow;
    std::unique_ptr<TdataFolderSession> m_session;
    TrecentFolders m_recent;
    ThostDashboard *m_dashboard;
    QMenu *m_recentMenu = nullptr;
    QLabel *m_folderLabel;
};
