#pragma once
// The host's main window: one button per plug-in found in <appdir>/Plugins.
// A button swaps the main view for the plug-in's frame; the frame swaps back
// itself through the host record ("Return To Main Window").
#include "TpluginModule.h"
#include <QMainWindow>
#include <QPointer>
#include <memory>
#include <vector>

class QPushButton;
class QVBoxLayout;

class ThostMainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit ThostMainWindow(const QString &appDir);
    ~ThostMainWindow() override;

    QWidget *mainView() const { return m_mainView; }
    QWidget *container() const { return m_container; }
    int pluginCount() const { return int(m_plugins.size()); }

    void showPlugin(int index);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Plugin {
        std::unique_ptr<TpluginModule> module;
        std::unique_ptr<TPluginHostInfo> hostInfo;
        QPointer<Tkt930Frame> frame;
    };
    void fitToScreen();
    void loadPlugins(const QString &folder);
    void report(const QString &text);

    QWidget *m_container;
    QVBoxLayout *m_containerLayout;
    QWidget *m_mainView;
    QVBoxLayout *m_buttonLayout;
    std::vector<Plugin> m_plugins;
};
