#pragma once
// The benchmark watches no progress and prints any message (a message means the run failed).
#include "MessageSink.h"
#include "ProgressSink.h"
#include <atomic>
#include <iostream>

class BenchProgressSink : public ProgressSink {
public:
    void setStage(const std::string &) override {}
    void setPosition(int) override {}
    bool isCancelled() const override { return false; }
    void setCancelled() override {}
    void setResult(TransferResult r) override { result = r; }
    std::atomic<TransferResult> result{TransferResult::None};
};

class BenchMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &message) override
    {
        std::cerr << "bench_transfer: " << message.caption << ": " << message.text << "\n";
        return MsgAnswer::Ok;
    }
};
