#pragma once
// kt930ctl download | upload | sync: the transfer jobs of the plug-in, driven
// from the command line against an analyzer (or kt930sim).
#include "TcliCommand.h"
#include "TtransferJob.h"
#include <memory>

class QCoreApplication;

struct TcliArguments;
class TcliProgressSink;

class TtransferCommand : public TcliCommand {
public:
    enum class Kind { Download, Upload, Sync };
    explicit TtransferCommand(Kind kind) : m_kind(kind) {}

    std::string name() const override;
    std::string summary() const override;
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

    // --usb, --ethernet A.B.C.D or --serial N into the parameters; false with why.
    static bool connectionFrom(const TcliArguments &args, TtransferJob::Parameters &parameters, std::string &why);
    // The Qt application a transfer's worker needs, with the serial ports DIR/KT930pc.ini maps.
    static std::unique_ptr<QCoreApplication> transferApplication(const TcliArguments &args);
    // Runs the job to its end. A failed USB transfer names the device it tried,
    // which the analyzer's boxes do not.
    static TtransferJob::Outcome runJob(const std::string &command, TtransferJob &job, TcliProgressSink &progress,
                                        TcommMethod method);

private:
    // Download and sync: the job run, its files saved; the exit code.
    int replace(TtransferJob::Parameters parameters, const TcliArguments &args);
    int upload(TtransferJob::Parameters parameters, const TcliArguments &args);
    // Reads the analyzer's memory back after an upload; 0 when it equals what was sent.
    int verify(TtransferJob::Parameters parameters);
    Kind m_kind;
};
