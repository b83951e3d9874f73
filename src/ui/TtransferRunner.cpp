#include "TtransferRunner.h"
#include "TCommPort.h"
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

bool TtransferRunner::chooseTransport(TtransferJob::Parameters &parameters, bool upload, const TPluginHostInfo *host,
                                      MessageSink &sink)
{
    TcomSelectFrm selector(nullptr, upload, &sink);
    selector.setWindowTitle(QStringLiteral("Communication Settings"));
    if (selector.exec() == 2)
        return false;
    switch (selector.method()) {
    case TcomSelectFrm::MethodUSB:
        parameters.method = TcommMethod::USB;
        break;
    case TcomSelectFrm::MethodEthernet:
        parameters.method = TcommMethod::Ethernet;
        for (int i = 0; i < 4; ++i)
            parameters.ip[std::size_t(i)] = selector.ipText(i + 1).toInt();
        if (!host)
            throw std::invalid_argument("No host record");
        parameters.hostValue = host->transferValue;
        break;
    default:
        parameters.method = TcommMethod::Serial;
        parameters.serialPort = selector.serialPort();
        break;
    }
    TCommPort::setPortOverrides(TserialPortMap::readOverrides(TcomSelectFrm::iniFile()));
    return true;
}

int TtransferRunner::run(TtransferJob &job, void *context)
{
    TfrmProgress progress(nullptr, context, &job.settings());
    QThread &worker = job.makeWorker(progress);
    const int result = progress.exec();
    waitForWorker(worker);
    return result;
}
