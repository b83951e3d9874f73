#pragma once
// Any message during a measurement means the run failed: print it.
#include "MessageSink.h"
#include <iostream>

class BenchMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &message) override
    {
        std::cerr << "bench_transfer: " << message.caption << ": " << message.text << "\n";
        return MsgAnswer::Ok;
    }
};
