#pragma once
// The benchmark watches no progress; it only keeps the result.
#include "ProgressSink.h"
#include <atomic>

class BenchProgressSink : public ProgressSink {
public:
    void setStage(const std::string &) override {}
    void setPosition(int) override {}
    bool isCancelled() const override { return false; }
    void setCancelled() override {}
    void setResult(TransferResult r) override { result = r; }
    std::atomic<TransferResult> result{TransferResult::None};
};
