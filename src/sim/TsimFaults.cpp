#include "TsimFaults.h"
#include <algorithm>
#include <map>

namespace {
const std::map<std::string, TsimFaults::Kind> kinds = {
    {"silent-after", TsimFaults::Kind::SilentAfter},     {"stop-after-block", TsimFaults::Kind::StopAfterBlock},
    {"short-block", TsimFaults::Kind::ShortBlock},       {"close-at-block", TsimFaults::Kind::CloseAtBlock},
    {"bad-ack-block", TsimFaults::Kind::BadAckBlock},    {"no-ack-block", TsimFaults::Kind::NoAckBlock},
    {"wrong-store", TsimFaults::Kind::WrongStore},
};

bool isCommand(const std::string &text)
{
    static const char *known[] = {"GESI", "GUIN", "GASQ", "GTSP", "PUIN", "PASQ", "PTSP"};
    return std::ranges::any_of(known, [&](const char *command) { return text == command; });
}
}

bool TsimFaults::add(const std::string &request, std::string &why)
{
    std::size_t equals = request.find('=');
    auto kind = kinds.find(request.substr(0, equals));
    if (equals == std::string::npos || kind == kinds.end()) {
        why = "unknown fault \"" + request + "\"";
        return false;
    }
    Fault fault{kind->second, -1, {}};
    std::string value = request.substr(equals + 1);
    if (fault.kind == Kind::SilentAfter) {
        fault.command = value;
    } else {
        std::size_t at = value.find('@');
        if (at != std::string::npos) {
            fault.command = value.substr(at + 1);
            value.resize(at);
        }
        if (value.empty() || value.find_first_not_of("0123456789") != std::string::npos || value.size() > 6) {
            why = "fault \"" + request + "\" needs a block number";
            return false;
        }
        fault.block = std::stoi(value);
    }
    if ((fault.kind == Kind::SilentAfter || !fault.command.empty()) && !isCommand(fault.command)) {
        why = "fault \"" + request + "\" names no known command";
        return false;
    }
    m_faults.push_back(fault);
    return true;
}

bool TsimFaults::hits(Kind kind, const std::string &command, int block) const
{
    return std::ranges::any_of(m_faults, [&](const Fault &fault) {
        return fault.kind == kind && fault.block == block && (fault.command.empty() || fault.command == command);
    });
}

bool TsimFaults::silentAfter(const std::string &command) const
{
    return std::ranges::any_of(m_faults,
                               [&](const Fault &fault) { return fault.kind == Kind::SilentAfter && fault.command == command; });
}

const char *TsimFaults::help()
{
    return "  silent-after=CMD      answer CMD, then nothing more on that connection\n"
           "  stop-after-block=K    a get sends blocks 0..K, then stops sending\n"
           "  short-block=K         a get sends only the first 132 bytes of block K, then stops\n"
           "  close-at-block=K      a get or put drops the connection where block K is due\n"
           "                        (a pseudo-terminal is hung up and made anew at the same link)\n"
           "  bad-ack-block=K       a put answers block K with the wrong acknowledgement\n"
           "                        (\"*\\r\" for an intermediate block, \"C\\r\" for the last)\n"
           "  no-ack-block=K        a put does not acknowledge block K\n"
           "  wrong-store=K         a put acknowledges block K as usual but stores it with its\n"
           "                        first byte inverted (for checking uploads by reading back)\n"
           "  Blocks count from 0. Append @CMD (e.g. stop-after-block=9@GTSP) to limit a block\n"
           "  fault to one command. --fault may be given more than once.\n";
}
