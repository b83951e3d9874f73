#include "TtransferRunner.h"
#include "TCommPort.h"
#include "TserialPortMap.h"
#include "VAROAutoSeqEditor.h"
#include "communicationsSelector.h"
#include "progress.h"
#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <stdexcept>

namespace {
const char *const UnknownExceptionText = "Unknown exception";

std::string applicationTitle()
{
    return QCoreApplication::applicationName().toStdString();
}

void showInternalError(MessageSink &sink, bool upload, const char *what)
{
    if (upload)
        sink.error(applicationTitle(), what);
    sink.show({"Error", TtransferRunner::internalErrorText(), MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task});
}

// One transfer through the settings form and the progress dialog; the job when the
// dialog ended with OK, null when the form or the transfer was cancelled.
std::unique_ptr<TtransferJob> runTransfer(TtransferJob::Parameters parameters, TPluginHostInfo *host, MessageSink &sink)
{
    const bool upload = parameters.kind == TtransferJob::Kind::Upload;
    parameters.context = host;
    if (!TtransferRunner::chooseTransport(parameters, upload, host, sink))
        return nullptr;
    auto job = std::make_unique<TtransferJob>(parameters, sink);
    if (TtransferRunner::run(*job, host) == 2)
        return nullptr;
    return job;
}

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
} // namespace

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

void TtransferRunner::upload(TdataSet &data, TPluginHostInfo *host, MessageSink &sink)
{
    try {
        TtransferJob::Parameters parameters;
        parameters.kind = TtransferJob::Kind::Upload;
        parameters.data = &data;
        if (const auto job = runTransfer(parameters, host, sink))
            job->save();
    } catch (const std::exception &e) {
        showInternalError(sink, true, e.what());
    } catch (...) {
        showInternalError(sink, true, UnknownExceptionText);
    }
}

void TtransferRunner::download(TdataSet &data, TPluginHostInfo *host, MessageSink &sink, unsigned savedParts,
                               unsigned editParts, const std::function<void()> &refresh)
{
    std::unique_ptr<TtransferJob> job;
    try {
        TtransferJob::Parameters parameters;
        parameters.kind = TtransferJob::Kind::Download;
        parameters.data = &data;
        parameters.savedParts = savedParts;
        job = runTransfer(parameters, host, sink);
        if (!job)
            return;
        job->takeOver();
        refresh();
    } catch (const std::exception &e) {
        showInternalError(sink, false, e.what());
    } catch (...) {
        showInternalError(sink, false, UnknownExceptionText);
    }
    // A download replaces the set by design (and keeps a restore point); anything else is an edit.
    if (job)
        job->save();
    else
        data.save(editParts, TsaveAction::Edit);
    refresh();
}
