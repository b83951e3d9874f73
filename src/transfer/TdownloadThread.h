#pragma once
// Reads the selected data sets from the analyzer into the download record and,
// after a completed transfer, lets the record copy them into the containers.
#include "TtransferThread.h"

class TdownloadThread : public TtransferThread {
public:
    // Throws std::invalid_argument "Invalid Arguments For TdownloadThread".
    TdownloadThread(void *context, ProgressSink *progress, MessageSink *messages, TdownloadCommStruct *record)
        : TtransferThread(context, progress, messages, record, false, "Invalid Arguments For TdownloadThread")
    {
    }
};
