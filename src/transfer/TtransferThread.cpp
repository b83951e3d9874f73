#include "TtransferThread.h"
#include "TtransferSession.h"
#include <stdexcept>

namespace {
class SilentMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &) override { return MsgAnswer::Ok; }
};
SilentMessageSink silentSink;

struct Stage {
    std::uint8_t bit;
    const char *getStage, *putStage, *getCommand, *putCommand;
    int position;
};
// Order on the wire: checkitems, autosequences, checklists.
const Stage Stages[] = {
    {SelectCheckitems, "Getting Checkitems", "Putting Checkitems", "GUIN\r", "PUIN\r", 25},
    {SelectAutosequences, "Getting Autosequences", "Putting Autosequences", "GASQ\r", "PASQ\r", 50},
    {SelectChecklists, "Getting Checklists", "Putting Checklists", "GTSP\r", "PTSP\r", 75},
};
}

TtransferThread::TtransferThread(void *context, ProgressSink *progress, MessageSink *messages,
                                 TtransferRecord *record, bool upload, const char *invalidArgumentsText)
    : m_context(context), m_progress(progress), m_messages(messages ? messages : &silentSink), m_record(record),
      m_upload(upload)
{
    if (!context || !progress || !record)
        throw std::invalid_argument(invalidArgumentsText);
}

void TtransferThread::run()
{
    try {
        execute();
    } catch (...) {
        m_messages->error("Error", "An unspecified error occurred.\nOperation Cancelled.", MsgModality::System);
        m_progress->setResult(TransferResult::Cancel);
    }
}

void TtransferThread::execute()
{
    m_progress->setStage("Initializing");
    std::uint8_t mode = TtransferSession::modeOf(m_record->settings().method);
    if (mode == ModeNone) {
        m_messages->error("Error", "Invalid State!\nOperation Cancelled.", MsgModality::System);
        m_progress->setCancelled();
        m_progress->setResult(TransferResult::Cancel);
        return;
    }
    TtransferSession session(*m_record, m_upload, mode, *m_progress, *m_messages);
    m_progress->setPosition(25);
    m_progress->setStage("Initiating Handshake");
    if (!session.handshake()) {
        m_progress->setResult(TransferResult::Cancel);
        return;
    }
    TtransferData &data = m_record->data;
    for (const Stage &stage : Stages) {
        if (!(data.selection & stage.bit))
            continue;
        std::uint8_t *area = stage.bit == SelectCheckitems ? data.checkitems
                           : stage.bit == SelectChecklists ? data.checklists
                                                           : data.autosequences;
        std::size_t blocks = stage.bit == SelectCheckitems ? TransferImages::CheckitemBlocks
                           : stage.bit == SelectChecklists ? TransferImages::ChecklistBlocks
                                                           : TransferImages::AutosequenceBlocks;
        m_progress->setStage(m_upload ? stage.putStage : stage.getStage);
        m_progress->setPosition(stage.position);
        bool done = m_upload ? session.putCommand(stage.putCommand, area, blocks)
                             : session.getCommand(stage.getCommand, area, blocks);
        if (!done) {
            m_progress->setResult(TransferResult::Cancel);
            return;
        }
    }
    m_progress->setStage("Completed!");
    m_progress->setPosition(100);
    session.close();
    m_record->completeTransfer();
    session.releaseHolder();
    m_progress->setResult(TransferResult::Ok);
}
