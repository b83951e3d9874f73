#pragma once
// kt930ctl download | upload | sync: the transfer workers of the plug-in, driven
// from the command line against an analyzer (or kt930sim).
#include "TcliCommand.h"

struct TcommSettings;
struct TcliArguments;
class TtransferRecord;

class TtransferCommand : public TcliCommand {
public:
    enum class Kind { Download, Upload, Sync };
    explicit TtransferCommand(Kind kind) : m_kind(kind) {}

    std::string name() const override;
    std::string summary() const override;
    std::string usage() const override;
    int run(const std::vector<std::string> &arguments) override;

    // --usb, --ethernet A.B.C.D or --serial N into the settings; false with why.
    static bool connectionFrom(const TcliArguments &args, TcommSettings &settings, std::string &why);

private:
    int download(const TcliArguments &args, const TcommSettings &settings);
    int upload(const TcliArguments &args, const TcommSettings &settings);
    int sync(const TcliArguments &args, const TcommSettings &settings);
    // Reads the analyzer's memory back after an upload; 0 when it equals what was sent.
    int verify(const TtransferRecord &sent, const TcommSettings &settings);

    Kind m_kind;
};
