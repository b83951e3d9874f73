#include "TreturnToHost.h"
#include "MessageSink.h"
#include "VAROAutoSeqEditor.h"
#include <QCoreApplication>
#include <QWidget>
#include <exception>

void TreturnToHost::run(QWidget *frame, const TPluginHostInfo *host, MessageSink &sink,
                        const std::function<void()> &save)
{
    QWidget *mainView = host ? host->mainView : nullptr;
    const std::string title = QCoreApplication::applicationName().toStdString();
    try {
        save();
        QWidget *container = host ? host->container : nullptr;
        if (container)
            container->setUpdatesEnabled(false);
        frame->hide();
        if (mainView)
            mainView->show();
        if (container)
            container->setUpdatesEnabled(true);
    } catch (const std::exception &e) {
        if (mainView)
            mainView->show();
        sink.error(title, e.what());
    } catch (...) {
        if (mainView)
            mainView->show();
        sink.error(title, "Unknown exception");
    }
}
