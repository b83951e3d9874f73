#pragma once
// The GUI steps every analyzer transfer shares: the settings form, the chosen
// transport written into the job's parameters, the progress dialog that starts
// the job's worker, and the wait for a worker that may still have a message box
// to show.
#include "TtransferJob.h"

class MessageSink;
struct TPluginHostInfo;

class TtransferRunner {
public:
    // What a transfer that failed with an exception tells the user.
    static const char *internalErrorText();

    // Shows the "Communication Settings" form; false when it was cancelled. Otherwise
    // writes the method, port or address into parameters and installs the serial port
    // overrides. Throws std::invalid_argument for Ethernet without a host record.
    static bool chooseTransport(TtransferJob::Parameters &parameters, bool upload, const TPluginHostInfo *host,
                                MessageSink &sink);

    // Shows the progress dialog, which starts the job's worker made for it, and returns
    // the dialog's result (2 when cancelled) once the worker has finished.
    static int run(TtransferJob &job, void *context);
};
