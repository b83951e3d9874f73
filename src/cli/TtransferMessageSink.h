#pragma once
// The analyzer's and the core's messages during a transfer: the progress bar's
// line is ended before one is printed to stderr.
#include "TcliMessageSink.h"

class TcliProgressSink;

class TtransferMessageSink : public TcliMessageSink {
public:
    explicit TtransferMessageSink(TcliProgressSink &progress);
    MsgAnswer show(const Message &message) override;

private:
    TcliProgressSink &m_progress;
};
