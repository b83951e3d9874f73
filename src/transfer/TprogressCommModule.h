#pragma once
// A module that reads the progress sink's cancel flag and moves its bar: the
// common part of the workers' modules Tmydlstruct and Tmyulstruct.
#include "ProgressSink.h"
#include "TgenericCommmunicationsModule.h"

class TprogressCommModule : public TgenericCommmunicationsModule {
public:
    TprogressCommModule(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout, std::uint32_t blockSize,
                        TtransportParams *parameters, ProgressSink &progress, MessageSink &messages)
        : TgenericCommmunicationsModule(holder, mode, timeout, blockSize, parameters, messages), m_progress(progress)
    {
    }
    bool isCancelled() override { return m_progress.isCancelled(); }
    void setProgress(int percent) override { m_progress.setPosition(percent); }

private:
    ProgressSink &m_progress;
};
