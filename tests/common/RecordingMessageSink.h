#pragma once
// Records every message in order; answers from a script (Yes by default).
#include "MessageSink.h"
#include <deque>
#include <mutex>
#include <ostream>
#include <vector>

class RecordingMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &message) override
    {
        std::lock_guard lock(m_mutex);
        messages.push_back(message);
        if (!answers.empty()) {
            MsgAnswer a = answers.front();
            answers.pop_front();
            return a;
        }
        return message.buttons == MsgButtons::YesNo ? MsgAnswer::Yes : MsgAnswer::Ok;
    }
    std::vector<Message> messages;
    std::deque<MsgAnswer> answers;

private:
    std::mutex m_mutex;
};

// Readable messages in failure output.
inline void PrintTo(const Message &message, std::ostream *out)
{
    *out << "{\"" << message.caption << "\", \"" << message.text << "\", icon " << int(message.icon) << ", modality "
         << int(message.modality) << "}";
}

inline bool operator==(const Message &a, const Message &b)
{
    return a.caption == b.caption && a.text == b.text && a.icon == b.icon && a.buttons == b.buttons
        && a.modality == b.modality;
}
