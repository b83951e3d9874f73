#pragma once
// The upload worker's module: keeps the record it sends.
#include "TprogressCommModule.h"
#include "TtransferRecord.h"

class Tmyulstruct : public TprogressCommModule {
public:
    Tmyulstruct(QRTcommClass *holder, std::uint8_t mode, std::uint32_t timeout, std::uint32_t blockSize,
                TtransportParams *parameters, TuploadCommStruct *record, ProgressSink &progress,
                MessageSink &messages)
        : TprogressCommModule(holder, mode, timeout, blockSize, parameters, progress, messages), record(record)
    {
    }
    TuploadCommStruct *record;
};
