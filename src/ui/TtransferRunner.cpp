#include "TtransferRunner.h"
#include "TCommPort.h"
#include "TcommSettings.h"
#include "TserialPortMap.h"
#include "VAROAutoSeqEditor.h"
#include "communicationsSelector.h"
#include "progress.h"
#include <QEventLoop>
#include <QThread>
#include <stdexcept>

namespace {
// After a cancel the worker may still be on its way out, and its last message box
// is shown on this thread: keep serving events until it has finished.
void waitForWorker(QThread &worker)
{
    QEventLoop loop;
    QObject::connect(&worker, &QThread::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    if (worker.isRunning())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    worker.wait();
}
}

const char *TtransferRunner::internalErrorText()
{
    return "An internal error occurred that prevented the download operation.\nPlease try to download again.\n\n"
           "If this error persists, please contact the system vendor.";
}

bool TtransferRunner::chooseTransport(TcommSettings &settings, bool upload, const TPluginHostInfo *host,
                                      MessageSink &sink)
{
    TcomSelectFrm selector(nullptr, upload, &sink);
    selector.setWindowTitle(QStringLiteral("Communication Settings"));
    if (selector.exec() == 2)
        return false;
    switch (selector.method()) {
    case TcomSelectFrm::MethodUSB:
        settings.method = std::uint8_t(TcommMethod::USB);
        break;
    case TcomSelectFrm::MethodEthernet:
        settings.method = std::uint8_t(TcommMethod::Ethernet);
        for (int i = 0; i < 4; ++i)
            settings.ip[i] = selector.ipText(i + 1).toInt();
        if (!host)
            throw std::invalid_argument("No host record");
        settings.hostValue = host->transferValue;
        break;
    default:
        settings.method = std::uint8_t(TcommMethod::Serial);
        settings.serialPort = selector.serialPort();
        break;
    }
    TCommPort::setPortOverrides(TserialPortMap::readOverrides(TcomSelectFrm::iniFile()));
    return true;
}

int TtransferRunner::run(TcommSettings &settings, void *context, const WorkerFactory &makeWorker)
{
    TfrmProgress progress(nullptr, context, &settings);
    std::unique_ptr<QThread> worker = makeWorker(progress);
    settings.worker = worker.get();
    const int result = progress.exec();
    waitForWorker(*worker);
    return result;
}
