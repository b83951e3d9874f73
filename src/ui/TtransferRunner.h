#pragma once
// The GUI steps every analyzer transfer shares: the settings form, the chosen
// transport written into the job's parameters, the progress dialog that starts
// the job's worker, and the wait for a worker that may still have a message box
// to show.
#include "TtransferJob.h"
#include <functional>

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

    // A frame's Upload of data (already saved by the caller); a failure by exception
    // gets the internal error box.
    static void upload(TdataSet &data, TPluginHostInfo *host, MessageSink &sink);
    // A frame's Download into data: after a completed transfer the op-code check, then
    // refresh, then savedParts saved as a download (with its restore point); after a
    // cancelled or failed one, editParts saved as an edit. refresh runs last either way.
    static void download(TdataSet &data, TPluginHostInfo *host, MessageSink &sink, unsigned savedParts,
                         unsigned editParts, const std::function<void()> &refresh);
};
