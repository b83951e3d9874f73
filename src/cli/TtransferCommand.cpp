#include "TtransferCommand.h"
#include "OpCodeDefinitions.h"
#include "TCommPort.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TcliProgressSink.h"
#include "TdataSet.h"
#include "TserialPortMap.h"
#include "TtransferMessageSink.h"
#include "TusbOpenAdvice.h"
#include <QCoreApplication>
#include <cstdio>
#include <iostream>
#include <unistd.h>

namespace {
int appArgc = 1;
char appName[] = "kt930ctl";
char *appArgv[] = {appName, nullptr};
} // namespace

std::string TtransferCommand::name() const
{
    switch (m_kind) {
    case Kind::Download:
        return "download";
    case Kind::Upload:
        return "upload";
    default:
        return "sync";
    }
}

std::string TtransferCommand::summary() const
{
    switch (m_kind) {
    case Kind::Download:
        return "fetch checkitems, autosequences and checklists from the analyzer and save them";
    case Kind::Upload:
        return "send the saved checkitems, autosequences and checklists to the analyzer";
    default:
        return "replace the checkitem database with the analyzer's and save Data/mit.dat";
    }
}

std::string TtransferCommand::usage() const
{
    std::string text = "Usage: kt930ctl " + name() + " (--usb | --ethernet A.B.C.D | --serial N)" +
                       (m_kind == Kind::Upload ? " [--verify] [--force]" : "") + " [--appdir DIR]\n";
    switch (m_kind) {
    case Kind::Download:
        text += "Fetches the whole data set from the analyzer. When the transfer completed, checks every\n"
                "checkitem's op code against Data/*.in and saves Data/mit.dat, inspection.asq,\n"
                "usertester1..5.asq and testProc.asq. A failed or cancelled transfer changes no file.\n";
        break;
    case Kind::Upload:
        text += "Sends the data set saved in DIR/Data to the analyzer. Refuses to send when a file of the\n"
                "data set could not be read, so defaults never overwrite the analyzer's content, and when\n"
                "a checkitem has an op code that no DIR/Data/*.in file defines.\n"
                "  --force          send checkitems with such op codes all the same\n"
                "  --verify         after a completed upload, read the analyzer's memory back (into memory,\n"
                "                   touching no file) and compare it byte for byte with what was sent;\n"
                "                   a difference is named by its first place and exits with code 3\n";
        break;
    case Kind::Sync:
        text += "Fetches the analyzer's checkitem database alone and saves it as DIR/Data/mit.dat.\n";
        break;
    }
    text += "  --usb            the analyzer on USB\n"
            "  --ethernet ADDR  the analyzer at IPv4 address ADDR, TCP port 60601\n"
            "  --serial N       the analyzer on serial port COMN (19200 baud, 8N1); COM1-32 are\n"
            "                   /dev/ttyS0-31, COM33-64 /dev/ttyUSB0-31, COM65-96 /dev/ttyACM0-31, and\n"
            "                   section SERIALPORTS of DIR/KT930pc.ini may map COMn=/any/path\n"
            "  --appdir DIR     application folder (default: as kt930ctl where says)\n"
            "Progress goes to stderr (a bar on a terminal, one line per stage otherwise), and so do the\n"
            "analyzer's messages. Ctrl+C cancels. Exit code 0 only when the transfer completed.\n";
    return text;
}

bool TtransferCommand::connectionFrom(const TcliArguments &args, TtransferJob::Parameters &parameters, std::string &why)
{
    const int chosen = int(args.has("--usb")) + int(args.has("--ethernet")) + int(args.has("--serial"));
    if (chosen != 1) {
        why = "choose exactly one of --usb, --ethernet A.B.C.D, --serial N";
        return false;
    }
    if (args.has("--usb")) {
        parameters.method = TcommMethod::USB;
    } else if (args.has("--ethernet")) {
        int octets[4];
        char extra;
        const std::string &address = args.options.at("--ethernet");
        if (std::sscanf(address.c_str(), "%d.%d.%d.%d%c", &octets[0], &octets[1], &octets[2], &octets[3], &extra) !=
            4) {
            why = "--ethernet needs an IPv4 address such as 127.0.0.1";
            return false;
        }
        for (int i = 0; i < 4; ++i) {
            if (octets[i] < 0 || octets[i] > 255) {
                why = "Invalid IP Address!";
                return false;
            }
            parameters.ip[std::size_t(i)] = octets[i];
        }
        parameters.method = TcommMethod::Ethernet;
    } else {
        char extra;
        int port = 0;
        if (std::sscanf(args.options.at("--serial").c_str(), "%d%c", &port, &extra) != 1 || port < 1 || port > 256) {
            why = "--serial needs a port number from 1 to 256";
            return false;
        }
        parameters.serialPort = port;
        parameters.method = TcommMethod::Serial;
    }
    return true;
}

int TtransferCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    std::set<std::string> flags{"--usb"};
    if (m_kind == Kind::Upload)
        flags.insert({"--verify", "--force"});
    if (auto exitCode = parseArguments(arguments, args, flags, 0, {"--ethernet", "--serial"}))
        return *exitCode;
    TtransferJob::Parameters parameters;
    std::string why;
    if (!connectionFrom(args, parameters, why)) {
        std::cerr << "kt930ctl " << name() << ": " << why << "\n" << usage();
        return 2;
    }
    const auto app = transferApplication(args);
    switch (m_kind) {
    case Kind::Download:
        parameters.kind = TtransferJob::Kind::Download;
        return replace(parameters, args);
    case Kind::Upload:
        return upload(parameters, args);
    default:
        parameters.kind = TtransferJob::Kind::Sync;
        return replace(parameters, args);
    }
}

std::unique_ptr<QCoreApplication> TtransferCommand::transferApplication(const TcliArguments &args)
{
    auto app = std::make_unique<QCoreApplication>(appArgc, appArgv);
    TCommPort::setPortOverrides(TserialPortMap::readOverrides(args.appDir / "KT930pc.ini"));
    return app;
}

TtransferJob::Outcome TtransferCommand::runJob(const std::string &command, TtransferJob &job,
                                               TcliProgressSink &progress, TcommMethod method)
{
    const TtransferJob::Outcome outcome = job.run(progress);
    progress.finish();
    if (outcome == TtransferJob::Outcome::Failed && method == TcommMethod::USB)
        std::cerr << "kt930ctl " << command << ": " << TusbOpenAdvice::forFailure(TusbDeviceApi::lastOpenAttempt());
    return outcome;
}

int TtransferCommand::replace(TtransferJob::Parameters parameters, const TcliArguments &args)
{
    TcliProgressSink progress(std::cerr, isatty(STDERR_FILENO));
    TtransferMessageSink messages(progress);
    // Nothing is loaded: a completed download replaces every container.
    TdataSet data(args.appDir, messages);
    parameters.data = &data;
    parameters.context = &data;
    parameters.savedParts = TdataSet::Checkitems | TdataSet::Inspections | TdataSet::UserTesters | TdataSet::Checklists;
    TtransferJob job(parameters, messages);
    if (runJob(name(), job, progress, parameters.method) != TtransferJob::Outcome::Completed)
        return 1;
    if (parameters.kind == TtransferJob::Kind::Sync)
        std::cout << "Saved the analyzer's checkitem database as " << data.dataFile("mit.dat").string() << "\n";
    else
        std::cout << "Downloaded the data set into " << data.dataFolder().string() << "\n";
    return 0;
}

namespace {
// The checkitems the analyzer would get with op codes it does not know, as
// "slot 38 (Z), slot 39 (0)"; empty when there are none.
std::string checkitemsWithUnknownOpCodes(const TdataSet &data, MessageSink &sink)
{
    constexpr std::size_t NamedAtMost = 5;
    TopCodeTable known;
    OpCodeDefinitions::loadReadable(data.dataFolder(), known, sink);
    const std::vector<std::size_t> slots = data.checkitems.slotsWithUnknownOpCodes(known);
    std::string named;
    for (std::size_t i = 0; i < slots.size() && i < NamedAtMost; ++i)
        named += std::string(i ? ", " : "") + "slot " + std::to_string(slots[i]) + " (" +
                 data.checkitems[slots[i] - 1].opCode + ")";
    if (slots.size() > NamedAtMost)
        named += " and " + std::to_string(slots.size() - NamedAtMost) + " more";
    return named;
}
} // namespace

int TtransferCommand::upload(TtransferJob::Parameters parameters, const TcliArguments &args)
{
    TcliProgressSink progress(std::cerr, isatty(STDERR_FILENO));
    TtransferMessageSink messages(progress);
    TdataSet data(args.appDir, messages);
    data.loadAll();
    if (!messages.messages().empty()) {
        std::cerr << "kt930ctl upload: not sending, the data set in " << data.dataFolder().string()
                  << " did not load cleanly (see above)\n";
        return 1;
    }
    if (!args.has("--force")) {
        const std::string unknown = checkitemsWithUnknownOpCodes(data, messages);
        if (!unknown.empty()) {
            std::cerr << "kt930ctl upload: not sending, checkitems with an op code that no definition file "
                         "knows: "
                      << unknown << " (--force sends them all the same)\n";
            return 1;
        }
    }
    parameters.kind = TtransferJob::Kind::Upload;
    parameters.data = &data;
    parameters.context = &data;
    TtransferJob job(parameters, messages);
    if (runJob(name(), job, progress, parameters.method) != TtransferJob::Outcome::Completed)
        return 1;
    std::cout << "Uploaded the data set of " << data.dataFolder().string() << "\n";
    if (!args.has("--verify"))
        return 0;
    parameters.kind = TtransferJob::Kind::Verify;
    return verify(parameters);
}

int TtransferCommand::verify(TtransferJob::Parameters parameters)
{
    TcliProgressSink progress(std::cerr, isatty(STDERR_FILENO));
    TtransferMessageSink messages(progress);
    TtransferJob job(parameters, messages);
    switch (runJob(name(), job, progress, parameters.method)) {
    case TtransferJob::Outcome::Completed:
        std::cout << "Verified: the analyzer's memory equals what was sent\n";
        return 0;
    case TtransferJob::Outcome::Differs:
        std::cerr << "kt930ctl upload --verify: the analyzer holds something else than was sent, first at "
                  << job.difference() << "\n";
        return 3;
    default:
        std::cerr << "kt930ctl upload --verify: the analyzer's memory could not be read back\n";
        return 1;
    }
}
