#pragma once
// Progress of a transfer on the terminal: a redrawn bar on a terminal, one line
// per stage otherwise. Ctrl+C sets the cancel flag the worker polls.
#include "ProgressSink.h"
#include <atomic>
#include <mutex>
#include <ostream>

class TcliProgressSink : public ProgressSink {
public:
    TcliProgressSink(std::ostream &out, bool terminal);
    ~TcliProgressSink() override;

    void setStage(const std::string &text) override;
    void setPosition(int percent) override;
    bool isCancelled() const override;
    void setCancelled() override;
    void setResult(TransferResult result) override;

    TransferResult result() const { return m_result; }
    // Ends the bar's line so that later output starts on a fresh one.
    void finish();

private:
    void draw();

    std::ostream &m_out;
    bool m_terminal;
    std::mutex m_mutex;
    std::string m_stage;
    int m_position = 0;
    bool m_drawn = false;
    std::atomic<TransferResult> m_result{TransferResult::None};
};
