#pragma once
// The download worker's module: keeps the record it fills.
#include "TprogressCommModule.h"
#include "TtransferRecord.h"

class Tmydlstruct : public TprogressCommModule {
public:
    Tmydlstruct(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout, std::uint32_t blockSize,
                TtransportParams *parameters, TdownloadCommStruct *record, ProgressSink &progress,
                MessageSink &messages)
        : TprogressCommModule(holder, mode, timeout, blockSize, parameters, progress, messages), record(record)
    {
    }
    TdownloadCommStruct *record;
};
