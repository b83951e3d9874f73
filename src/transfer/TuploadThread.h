#pragma once
// Sends the selected areas of the upload record to the analyzer.
#include "TtransferThread.h"

class TuploadThread : public TtransferThread {
public:
    // Throws std::invalid_argument "Invalid Arguments For TuploadThread".
    TuploadThread(void *context, ProgressSink *progress, MessageSink *messages, TuploadCommStruct *record)
        : TtransferThread(context, progress, messages, record, true, "Invalid Arguments For TuploadThread")
    {
    }
};
