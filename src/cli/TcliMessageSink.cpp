#include "TcliMessageSink.h"
#include "TtextEncoding.h"

MsgAnswer TcliMessageSink::show(const Message &message)
{
    m_messages.push_back(message);
    if (m_out)
        *m_out << TtextEncoding::toUtf8(message.caption) << "\n" << printable(message.text) << "\n" << std::flush;
    // Nobody can answer on a pipe: questions take their default, Yes.
    return message.buttons == MsgButtons::YesNo ? MsgAnswer::Yes : MsgAnswer::Ok;
}

std::string TcliMessageSink::printable(const std::string &text)
{
    std::string result = TtextEncoding::toUtf8(text);
    for (char &c : result)
        if (c == '\r')
            c = '\n';
    return result;
}
