#pragma once
// What the download and upload workers share: handshake, then the selected data
// commands in the order checkitems, autosequences, checklists, reporting stage,
// bar and result to the progress sink.
#include "MessageSink.h"
#include "ProgressSink.h"
#include "TtransferRecord.h"
#include <QThread>

class TtransferThread : public QThread {
    Q_OBJECT
public:
    // Messages may be null (nothing is shown then); context, progress and record may not.
    TtransferThread(void *context, ProgressSink *progress, MessageSink *messages, TtransferRecord *record,
                    bool upload, const char *invalidArgumentsText);

    // The frame-side object; only required to be present.
    void *context() const { return m_context; }

protected:
    void run() override;

private:
    void execute();

    void *m_context;
    ProgressSink *m_progress;
    MessageSink *m_messages;
    TtransferRecord *m_record;
    bool m_upload;
};
