#pragma once
// The GUI steps every analyzer transfer shares: the settings form, the chosen
// transport written into the record, the progress dialog that starts the worker,
// and the wait for a worker that may still have a message box to show.
#include <functional>
#include <memory>

class MessageSink;
class QThread;
class TfrmProgress;
struct TPluginHostInfo;
struct TcommSettings;

class TtransferRunner {
public:
    // What a transfer that failed with an exception tells the user.
    static const char *internalErrorText();

    // Shows the "Communication Settings" form; false when it was cancelled. Otherwise
    // writes the method, port or address into settings and installs the serial port
    // overrides. Throws std::invalid_argument for Ethernet without a host record.
    static bool chooseTransport(TcommSettings &settings, bool upload, const TPluginHostInfo *host, MessageSink &sink);

    using WorkerFactory = std::function<std::unique_ptr<QThread>(TfrmProgress &)>;
    // Shows the progress dialog, which starts the worker made for it, and returns the
    // dialog's result (2 when cancelled) once the worker has finished.
    static int run(TcommSettings &settings, void *context, const WorkerFactory &makeWorker);
};
