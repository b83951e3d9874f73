#include "TtransferMessageSink.h"
#include "TcliProgressSink.h"
#include <iostream>

TtransferMessageSink::TtransferMessageSink(TcliProgressSink &progress)
    : TcliMessageSink(&std::cerr), m_progress(progress)
{
}

MsgAnswer TtransferMessageSink::show(const Message &message)
{
    m_progress.finish();
    return TcliMessageSink::show(message);
}
