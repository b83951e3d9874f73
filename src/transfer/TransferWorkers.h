#pragma once
// Worker threads (one per transfer). Each is created stopped, started by the
// progress dialog, reports through the progress and message sinks, and ends by
// setting the progress sink's result (Ok after a completed transfer).
//
//   TdownloadThread(void *context, ProgressSink *progress, MessageSink *messages, TdownloadCommStruct *record)
//   TuploadThread  (void *context, ProgressSink *progress, MessageSink *messages, TuploadCommStruct *record)
//   TinstSyncThread(ProgressSink *progress, MessageSink *messages, TsyncCommStruct *record)
//
// A null context or progress sink throws std::invalid_argument with the texts
// "Invalid Arguments For TdownloadThread", "Invalid Arguments For TuploadThread",
// "Invalid Arguments For TinstSyncThread(bool, TfrmProgress)".
#include "TdownloadThread.h"
#include "TinstSyncThread.h"
#include "TuploadThread.h"
