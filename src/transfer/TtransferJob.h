#pragma once
// One transfer with the analyzer as a job: download, upload, verify, sync or read. The
// parameters go in, progress and messages go out through the sinks, an outcome
// comes back. The job builds the transfer record and its worker, and owns what
// follows a completed transfer (the op-code check, the saves that keep a restore
// point, the comparison of a verify), so every caller runs the same use case.
#include "MessageSink.h"
#include "ProgressSink.h"
#include "TcommSettings.h"
#include "TdataSet.h"
#include "TtransferRecord.h"
#include <array>
#include <memory>
#include <string>

class QThread;
struct TsyncCommStruct;

class TtransferJob {
public:
    // Verify reads the analyzer's memory back into a record of its own and compares
    // it with what an upload of the data set sends; it changes nothing. Read is a
    // download into the data set's containers alone: no op-code repair, no file saved,
    // so a scratch data set shows the analyzer's content as it is.
    enum class Kind { Download, Upload, Verify, Sync, Read };
    enum class Outcome {
        Completed,
        Failed,   // the transfer failed or was cancelled; the worker has said why
        NotSaved, // a file could not be written; the save has said which
        Differs,  // verify: the analyzer holds something else, see difference()
    };

    struct Parameters {
        Kind kind = Kind::Download;
        TcommMethod method = TcommMethod::USB;
        int serialPort = 0;          // serial: the N of COMn
        std::array<int, 4> ip{};     // Ethernet: the four octets
        std::uint32_t hostValue = 0; // Ethernet: the host record's word at offset 92
        TdataSet *data = nullptr;    // what an upload sends, what a download or sync replaces
        void *context = nullptr;     // the caller's object; the download and upload workers require one
        std::uint8_t selection = SelectAll;
        // What a completed download saves; the frame never writes the checklist file.
        unsigned savedParts = TdataSet::Checkitems | TdataSet::Inspections | TdataSet::UserTesters;
    };

    // Builds the record; an upload packs the data set now. Throws
    // std::invalid_argument when no data set is given.
    TtransferJob(const Parameters &parameters, MessageSink &messages);
    ~TtransferJob();
    TtransferJob(const TtransferJob &) = delete;
    TtransferJob &operator=(const TtransferJob &) = delete;

    // The record's settings part, which the progress dialog reads.
    TcommSettings &settings();
    // Makes the stopped worker that reports to progress and stores it in the
    // settings. Throws the worker's std::invalid_argument (no context).
    QThread &makeWorker(ProgressSink &progress);
    // Whether the worker reported a completed transfer.
    bool completed() const;

    // After a completed transfer: a download checks the op codes, a sync copies the
    // image into the checkitems, a verify compares. Views refresh before save().
    Outcome takeOver();
    // Saves what a download or sync brought, as that action; true when all was written.
    // A completed download, upload or sync that was kept is recorded for the overview,
    // so an upload calls it too.
    bool save();
    // Without a GUI: makes and starts the worker, serves this thread's events until
    // it ends, then takes over and saves.
    Outcome run(ProgressSink &progress);

    // Verify: the first place where the analyzer differs, e.g. "checkitem 7 (byte
    // 270 of the checkitem area)"; empty while none is known.
    const std::string &difference() const { return m_difference; }

private:
    class ResultWatch;

    Parameters m_parameters;
    MessageSink &m_messages;
    std::unique_ptr<TtransferRecord> m_record;
    std::unique_ptr<TsyncCommStruct> m_syncRecord;
    std::unique_ptr<ResultWatch> m_watch;
    std::unique_ptr<QThread> m_worker;
    std::string m_difference;
};
