// kt930pc: the PC host. Loads the plug-ins of <appdir>/Plugins and offers one
// button per plug-in. The application folder is KT930PC_APPDIR when set, else
// the executable's folder.
#include "ThostMainWindow.h"
#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("kt930pc"));
    const QByteArray overridden = qgetenv("KT930PC_APPDIR");
    const QString appDir = overridden.isEmpty() ? QCoreApplication::applicationDirPath() : QString::fromLocal8Bit(overridden);
    int result = 0;
    {
        ThostMainWindow window(appDir);
        window.show();
        result = app.exec();
    }
    return result;
}
