#include "TsimOptions.h"
#include "AppDir.h"
#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace {
bool toNumber(const std::string &text, int minimum, int &value)
{
    if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    value = std::atoi(text.c_str());
    return value >= minimum;
}
}

bool TsimOptions::parse(int argc, char **argv, std::string &why)
{
    bool listenGiven = false;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--help" || option == "-h") {
            help = true;
            return true;
        }
        static const char *const valueOptions[] = {"--listen", "--pty",   "--memory",     "--appdir",
                                                   "--baud",   "--fault", "--put-timeout"};
        if (std::find(std::begin(valueOptions), std::end(valueOptions), option) == std::end(valueOptions)) {
            why = option.rfind('-', 0) == 0 ? "unknown option " + option : "unexpected argument " + option;
            return false;
        }
        // The next option is no value: "--memory --listen A:P" must not name a memory file "--listen".
        if (i + 1 >= argc || std::string(argv[i + 1]).rfind("--", 0) == 0) {
            why = option + " needs a value";
            return false;
        }
        const std::string value = argv[++i];
        if (option == "--listen") {
            std::size_t colon = value.rfind(':');
            if (colon == std::string::npos || colon == 0 || !toNumber(value.substr(colon + 1), 0, listenPort)
                || listenPort > 65535) {
                why = "--listen needs ADDRESS:PORT";
                return false;
            }
            listenAddress = value.substr(0, colon);
            listenGiven = true;
        } else if (option == "--pty") {
            ptyLink = value;
        } else if (option == "--memory") {
            memoryFile = value;
        } else if (option == "--appdir") {
            appDir = value;
        } else if (option == "--baud") {
            if (!toNumber(value, 10, baud)) {
                why = "--baud needs a rate of at least 10";
                return false;
            }
        } else if (option == "--put-timeout") {
            if (!toNumber(value, 1, putTimeoutMs)) {
                why = "--put-timeout needs milliseconds";
                return false;
            }
        } else if (option == "--fault") {
            if (!faults.add(value, why))
                return false;
        }
    }
    if (!listenGiven && ptyLink.empty()) {
        listenAddress = "127.0.0.1";
        listenPort = 60601;
    }
    if (appDir.empty()) {
        folders = TappDir::folders();
        appDir = folders.application;
    }
    return true;
}

std::string TsimOptions::usage()
{
    return std::string(
               "Usage: kt930sim [options]\n"
               "Simulates a KT930 Plus analyzer: answers the command protocol (GESI, GUIN, GASQ,\n"
               "GTSP, PUIN, PASQ, PTSP) over TCP and/or a pseudo-terminal.\n"
               "\n"
               "  --listen ADDR:PORT   listen for one TCP client at a time (default 127.0.0.1:60601\n"
               "                       when no --pty is given; port 0 picks a free port)\n"
               "  --pty LINK           serve a pseudo-terminal; LINK becomes a symbolic link to it\n"
               "  --memory FILE        keep the analyzer's memory in FILE, written after each\n"
               "                       completed put; made from the demo data set when missing\n"
               "                       (without --memory the memory lives in the process only)\n"
               "  --appdir DIR         application folder whose Data/ seeds a new memory\n"
               "                       (default: as kt930ctl where says)\n"
               "  --baud N             send and take in at most N/10 bytes a second each way, like\n"
               "                       a serial line\n"
               "  --put-timeout MS     drop a put whose next block is late (default 5000)\n"
               "  --fault FAULT        inject a fault:\n")
        + TsimFaults::help()
        + "  --help               show this text\n"
          "\n"
          "Each command is logged on stderr; \"kt930sim: ready\" follows start-up.\n"
          "SIGINT or SIGTERM stops the simulator cleanly.\n";
}
