#pragma once
// Messages of the core on a terminal: recorded, and printed as a caption line
// followed by the text when a stream is given.
#include "MessageSink.h"
#include <ostream>
#include <vector>

class TcliMessageSink : public MessageSink {
public:
    explicit TcliMessageSink(std::ostream *out = nullptr) : m_out(out) {}
    MsgAnswer show(const Message &message) override;
    const std::vector<Message> &messages() const { return m_messages; }

    // "\r" ends a line on the terminal just as "\n" does.
    static std::string printable(const std::string &text);

private:
    std::ostream *m_out;
    std::vector<Message> m_messages;
};
