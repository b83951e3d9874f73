#include "TtransferJob.h"
#include "TlastTransfer.h"
#include "TransferWorkers.h"
#include "TuploadVerifier.h"
#include <QEventLoop>
#include <atomic>
#include <stdexcept>

// Passes everything on and keeps the result, which not every sink tells.
class TtransferJob::ResultWatch : public ProgressSink {
public:
    explicit ResultWatch(ProgressSink &sink) : m_sink(sink) {}
    void setStage(const std::string &text) override { m_sink.setStage(text); }
    void setPosition(int percent) override { m_sink.setPosition(percent); }
    bool isCancelled() const override { return m_sink.isCancelled(); }
    void setCancelled() override { m_sink.setCancelled(); }
    void setResult(TransferResult result) override
    {
        m_result = result;
        m_sink.setResult(result);
    }
    bool completed() const { return m_result == TransferResult::Ok; }

private:
    ProgressSink &m_sink;
    std::atomic<TransferResult> m_result{TransferResult::None};
};

TtransferJob::TtransferJob(const Parameters &parameters, MessageSink &messages)
    : m_parameters(parameters), m_messages(messages)
{
    TdataSet *data = parameters.data;
    if (!data)
        throw std::invalid_argument("A transfer needs a data set");
    TcommSettings settings;
    settings.kind = std::uint8_t(parameters.kind == Kind::Upload ? TtransferKind::Upload : TtransferKind::Download);
    settings.method = std::uint8_t(parameters.method);
    settings.serialPort = parameters.serialPort;
    for (std::size_t i = 0; i < 4; ++i)
        settings.ip[i] = parameters.ip[i];
    settings.hostValue = parameters.hostValue;
    switch (parameters.kind) {
    case Kind::Sync:
        m_syncRecord = std::make_unique<TsyncCommStruct>();
        m_syncRecord->settings = settings;
        m_syncRecord->settings.requested = 1;
        return;
    case Kind::Upload:
        m_record = std::make_unique<TuploadCommStruct>(&data->checkitems, &data->checklists, &data->userTesters,
                                                       &data->inspections);
        break;
    case Kind::Download:
    case Kind::Read:
        m_record = std::make_unique<TdownloadCommStruct>(&data->checkitems, &data->checklists, &data->userTesters,
                                                         &data->inspections);
        break;
    case Kind::Verify:
        // Read into the record alone: no container is given, so none changes.
        m_record = std::make_unique<TdownloadCommStruct>(nullptr, nullptr, nullptr, nullptr);
        break;
    }
    m_record->settings() = settings;
    m_record->data.selection = parameters.selection;
}

TtransferJob::~TtransferJob()
{
    if (m_worker)
        m_worker->wait();
}

TcommSettings &TtransferJob::settings()
{
    return m_syncRecord ? m_syncRecord->settings : m_record->settings();
}

QThread &TtransferJob::makeWorker(ProgressSink &progress)
{
    m_watch = std::make_unique<ResultWatch>(progress);
    void *context = m_parameters.context;
    switch (m_parameters.kind) {
    case Kind::Sync:
        m_worker = std::make_unique<TinstSyncThread>(m_watch.get(), &m_messages, m_syncRecord.get());
        break;
    case Kind::Upload:
        m_worker = std::make_unique<TuploadThread>(context, m_watch.get(), &m_messages,
                                                   static_cast<TuploadCommStruct *>(m_record.get()));
        break;
    default:
        m_worker = std::make_unique<TdownloadThread>(context, m_watch.get(), &m_messages,
                                                     static_cast<TdownloadCommStruct *>(m_record.get()));
        break;
    }
    settings().worker = m_worker.get();
    return *m_worker;
}

bool TtransferJob::completed() const
{
    return m_watch && m_watch->completed();
}

TtransferJob::Outcome TtransferJob::takeOver()
{
    TdataSet &data = *m_parameters.data;
    switch (m_parameters.kind) {
    case Kind::Download:
        data.validateOpCodes();
        break;
    case Kind::Sync:
        m_syncRecord->copyInto(data.checkitems);
        break;
    case Kind::Verify: {
        // Packed as an upload of the same data set would send it.
        const auto sent = std::make_unique<TuploadCommStruct>(&data.checkitems, &data.checklists, &data.userTesters,
                                                              &data.inspections);
        m_difference = TuploadVerifier::firstDifference(sent->data, m_record->data).value_or("");
        return m_difference.empty() ? Outcome::Completed : Outcome::Differs;
    }
    case Kind::Upload:
    case Kind::Read:
        break;
    }
    return Outcome::Completed;
}

bool TtransferJob::save()
{
    const Parameters &p = m_parameters;
    // Both replace the set by design: the save keeps a restore point of what it replaces.
    bool saved = true;
    if (p.kind == Kind::Download)
        saved = p.data->save(p.savedParts, TsaveAction::Download);
    else if (p.kind == Kind::Sync)
        saved = p.data->saveCheckitems(TsaveAction::Sync);
    // When and how the data set last met an analyzer, for the host's overview: only a
    // transfer that moved something and whose result was kept.
    const bool moved = p.kind == Kind::Download || p.kind == Kind::Upload || p.kind == Kind::Sync;
    if (saved && moved && completed())
        TlastTransfer::record(p.data->dataFolder(),
                              p.kind == Kind::Upload ? "upload" : p.kind == Kind::Sync ? "sync" : "download",
                              TlastTransfer::linkText(int(p.method), p.serialPort, p.ip));
    return saved;
}

TtransferJob::Outcome TtransferJob::run(ProgressSink &progress)
{
    QThread &worker = makeWorker(progress);
    QEventLoop loop;
    QObject::connect(&worker, &QThread::finished, &loop, &QEventLoop::quit);
    worker.start();
    loop.exec();
    worker.wait();
    if (!completed())
        return Outcome::Failed;
    const Outcome outcome = takeOver();
    return save() ? outcome : Outcome::NotSaved;
}
