#pragma once
// What a transfer worker reports while it runs: the stage text, the bar
// position (0..100), and at the end a result; it polls the cancel flag.
#include <string>

enum class TransferResult { None = 0, Ok = 1, Cancel = 2 };

class ProgressSink {
public:
    virtual ~ProgressSink() = default;
    virtual void setStage(const std::string &text) = 0;
    virtual void setPosition(int percent) = 0;
    virtual bool isCancelled() const = 0;
    virtual void setCancelled() = 0;
    // Called once by the worker when it ends (Ok after a completed transfer).
    virtual void setResult(TransferResult result) = 0;
};
