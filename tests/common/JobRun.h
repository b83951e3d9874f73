#pragma once
// One transfer job on the data set of a folder of its own, which holds the demo
// op-code definitions, with recording sinks.
#include "RecordingMessageSink.h"
#include "RecordingProgressSink.h"
#include "TempDir.h"
#include "TtransferJob.h"

struct JobRun {
    JobRun()
    {
        std::filesystem::create_directories(appDir / "Data");
        for (const auto &entry :
             std::filesystem::directory_iterator(std::filesystem::path(KT930_SOURCE_DIR) / "appdir/Data"))
            if (entry.path().extension() == ".in")
                std::filesystem::copy_file(entry.path(), appDir / "Data" / entry.path().filename().string());
    }

    // Runs a job of these parameters on this run's data set.
    TtransferJob::Outcome run(TtransferJob::Parameters parameters)
    {
        parameters.data = &set;
        parameters.context = &set;
        TtransferJob job(parameters, messages);
        const TtransferJob::Outcome outcome = job.run(progress);
        difference = job.difference();
        return outcome;
    }
    std::string file(const std::string &name) const { return TempDir::read(set.dataFile(name)); }

    TempDir appDir;
    RecordingMessageSink messages;
    RecordingProgressSink progress;
    TdataSet set{appDir.path(), messages};
    std::string difference;
};
