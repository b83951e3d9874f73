#pragma once
// One worker run: the frame's containers, recording sinks, and the records the
// workers take, pointed at a simulator.
#include "RecordingProgressSink.h"
#include "KnownDataSet.h"
#include "RecordingMessageSink.h"
#include "TransferMessages.h"
#include "SimulatorUnderTest.h"
#include "TransferWorkers.h"
#include <QDeadlineTimer>
#include <memory>

struct TransferRun {
    DataSet set;
    RecordingProgressSink progress;
    RecordingMessageSink messages;
    int context = 0;

    std::unique_ptr<TdownloadCommStruct> downloadRecord(std::uint8_t selection)
    {
        auto record = std::make_unique<TdownloadCommStruct>(&set.checkitems, &set.checklists, &set.testers,
                                                            &set.inspections);
        record->data.selection = selection;
        return record;
    }
    std::unique_ptr<TuploadCommStruct> uploadRecord(std::uint8_t selection)
    {
        auto record = std::make_unique<TuploadCommStruct>(&set.checkitems, &set.checklists, &set.testers,
                                                          &set.inspections);
        record->data.selection = selection;
        return record;
    }
};

// Starts a worker and waits for its end; false when it did not end within the guard
// (every time-out of a transfer is 2 s, so 20 s means it hung; a paced line needs
// a guard of its own).
inline bool runToEnd(QThread &worker, int guardMs = 20000)
{
    worker.start();
    return worker.wait(QDeadlineTimer(guardMs));
}

inline std::string bytesOf(const std::uint8_t *area, std::size_t size)
{
    return std::string(reinterpret_cast<const char *>(area), size);
}
