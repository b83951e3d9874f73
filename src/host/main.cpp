// kt930pc: the PC host. Loads the plug-ins of the plug-in folder and offers one
// button per plug-in, on the application folder TappDir chooses.
#include "TdataFolderSession.h"
#include "ThostMainWindow.h"
#include <QApplication>
#include <QSettings>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {
const char Usage[] = "Usage: kt930pc [--self-test]\n"
                     "The KT930 Plus PC application. kt930ctl where names the folders it uses.\n"
                     "  --self-test   load every plug-in, show the first one's window, print what was\n"
                     "                loaded and quit; the host's messages go to stderr, not to boxes (exit\n"
                     "                code 0 when every plug-in loaded and a window was shown)\n";

// Checks an installation without a user: nothing may wait for an answer. The host's
// own reports go to stderr; a plug-in's message box would wait, so a watchdog ends it.
int selfTest(ThostMainWindow &window)
{
    if (window.pluginCount() == 0) {
        std::fputs("kt930pc: no plug-in was loaded\n", stderr);
        return 1;
    }
    for (int i = 0; i < window.pluginCount(); ++i)
        std::printf("plug-in \"%s\" from %s\n", window.pluginName(i).toLocal8Bit().constData(),
                    window.pluginPath(i).toLocal8Bit().constData());
    window.showPlugin(0);
    const bool shown = !window.mainView()->isVisible();
    std::printf("%s\n", shown ? "window shown" : "window not shown");
    return shown && window.pluginErrors() == 0 ? 0 : 1;
}
} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kt930pc"));
    QApplication::setApplicationVersion(QStringLiteral(KT930_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("com.kt930.kt930pc"));
    const QStringList arguments = QApplication::arguments().mid(1);
    const bool test = arguments == QStringList{QStringLiteral("--self-test")};
    if (arguments == QStringList{QStringLiteral("--help")}) {
        std::fputs(Usage, stdout);
        return 0;
    }
    if (!arguments.isEmpty() && !test) {
        std::fprintf(stderr, "kt930pc: unknown argument %s\n%s", arguments.first().toLocal8Bit().constData(), Usage);
        return 2;
    }
    if (test) {
        // A box that nobody answers would wait for ever; a self-test that hangs has failed.
        QTimer::singleShot(30000, [] {
            std::fputs("kt930pc: self-test timed out (a message box is waiting?)\n", stderr);
            std::_Exit(1);
        });
    }
    const auto reporting = test ? ThostMainWindow::Reporting::Console : ThostMainWindow::Reporting::Boxes;
    const TappFolders folders = TappDir::folders();
    // Qt's own settings (the file dialog's state) stay with the user's other files of this
    // program instead of ~/.config/QtProject.conf.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QString::fromStdString(folders.application.string()));
    ThostMainWindow::prepareDataFolder(folders, reporting);
    const std::filesystem::path dataFolder = TappDir::dataFolder(folders.application);
    // Held while the folder is in use, so that a second host on it can say who has it.
    auto session = std::make_unique<TdataFolderSession>(dataFolder);
    if (!ThostMainWindow::continueWithDataFolderInUse(*session, dataFolder, reporting))
        return 0;
    int result = 0;
    {
        ThostMainWindow window(folders, reporting, std::move(session));
        window.show();
        result = test ? selfTest(window) : QApplication::exec();
    }
    return result;
}
