#pragma once
// The host's main window: one button per plug-in found in the plug-in folder.
// A button swaps the main view for the plug-in's frame; the frame swaps back
// itself through the host record ("Return To Main Window"). Menus give Restore
// Previous Data Set, Quit, the help files, About and About Qt; the status line
// names the application folder.
#include "AppDir.h"
#include "TpluginModule.h"
#include <QMainWindow>
#include <QPointer>
#include <memory>
#include <vector>

class QLabel;
class QPushButton;
class QVBoxLayout;
class THelpWindow;
class TdataFolderSession;

class ThostMainWindow : public QMainWindow {
    Q_OBJECT
public:
    // Boxes for a user; lines on stderr for a self-test, which nobody is there to answer.
    enum class Reporting { Boxes, Console };

    explicit ThostMainWindow(const TappFolders &folders, Reporting reporting = Reporting::Boxes);
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
};
