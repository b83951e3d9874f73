#pragma once
// Records what a worker reports; can cancel itself at a bar position, or run a hook
// when the worker reaches a stage.
#include "ProgressSink.h"
#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

class RecordingProgressSink : public ProgressSink {
public:
    void setStage(const std::string &text) override
    {
        {
            std::lock_guard lock(m_mutex);
            stages.push_back(text);
        }
        if (text == hookAtStage && hook) // outside the lock: a hook may wait for others
            hook();
    }
    void setPosition(int percent) override
    {
        {
            std::lock_guard lock(m_mutex);
            positions.push_back(percent);
        }
        if (percent == cancelAtPosition)
            cancelled = true;
    }
    bool isCancelled() const override { return cancelled; }
    void setCancelled() override { cancelled = true; }
    void setResult(TransferResult r) override
    {
        std::lock_guard lock(m_mutex);
        results.push_back(r);
    }
    std::vector<std::string> stages;
    std::vector<int> positions;
    std::vector<TransferResult> results;
    std::atomic<bool> cancelled {false};
    int cancelAtPosition = -1;
    std::function<void()> hook;
    std::string hookAtStage;

private:
    std::mutex m_mutex;
};
