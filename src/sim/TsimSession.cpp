#include "TsimSession.h"
#include "TransferImages.h"
#include <cstring>
#include <iostream>
#include <map>
#include <vector>

namespace {
constexpr std::size_t BlockSize = TransferImages::BlockSize;
constexpr std::size_t MaxCommandLine = 64; // longer garbage without a CR is thrown away

struct TcommandInfo {
    bool put;
    TsimMemory::Area area;
};
const std::map<std::string, TcommandInfo> commands = {
    {"GUIN", {false, TsimMemory::Area::Checkitems}}, {"GASQ", {false, TsimMemory::Area::Autosequences}},
    {"GTSP", {false, TsimMemory::Area::Checklists}}, {"PUIN", {true, TsimMemory::Area::Checkitems}},
    {"PASQ", {true, TsimMemory::Area::Autosequences}}, {"PTSP", {true, TsimMemory::Area::Checklists}},
};
using Kind = TsimFaults::Kind;
}

TsimSession::TsimSession(TsimLink &link, TsimMemory &memory, const TsimFaults &faults, const Settings &settings)
    : m_link(link), m_memory(memory), m_faults(faults), m_settings(settings)
{
}

std::string TsimSession::identificationBlock()
{
    std::string block(BlockSize, '\0');
    std::memcpy(block.data(), "KT930 Plus", 10);
    std::memcpy(&block[32], "SIM-000001", 10);
    std::memcpy(&block[48], "1.00", 4);
    return block;
}

void TsimSession::log(const std::string &text) const
{
    std::cerr << "kt930sim: " << m_link.name() << ": " << text << std::endl;
}

bool TsimSession::serveInput()
{
    std::string &input = m_link.input();
    for (std::size_t cr; (cr = input.find('\r')) != std::string::npos;) {
        std::string line = input.substr(0, cr);
        input.erase(0, cr + 1);
        // A command is exactly four letters and CR; anything else is not one.
        if (line.size() != 4) {
            log("ignored a malformed command of " + std::to_string(line.size() + 1) + " bytes");
            continue;
        }
        if (serve(line) == Outcome::Drop)
            return false;
    }
    if (input.size() > MaxCommandLine)
        input.clear();
    return true;
}

TsimSession::Outcome TsimSession::serve(const std::string &command)
{
    if (m_silent) {
        log("silent, ignoring " + command);
        return Outcome::Done;
    }
    log(command);
    Outcome outcome = Outcome::Done;
    if (command == "GESI") {
        std::string block = identificationBlock();
        outcome = sendBlocks(command, reinterpret_cast<const std::uint8_t *>(block.data()), 1);
    } else if (auto known = commands.find(command); known != commands.end()) {
        const TcommandInfo &info = known->second;
        outcome = info.put ? receiveBlocks(command, info.area)
                           : sendBlocks(command, m_memory.image(info.area).data(), TsimMemory::blockCount(info.area));
    } else {
        log("unknown command ignored");
        return Outcome::Done;
    }
    if (outcome == Outcome::Done && m_faults.silentAfter(command)) {
        log("fault: silent from now on");
        m_silent = true;
    }
    return outcome;
}

TsimSession::Outcome TsimSession::failed(TsimLink::Result result, const std::string &what)
{
    switch (result) {
    case TsimLink::Result::Closed: log(what + ": connection closed by the PC"); return Outcome::Drop;
    case TsimLink::Result::Stopped: log(what + ": stopping"); return Outcome::Drop;
    case TsimLink::Result::TimedOut: log(what + ": timed out"); return Outcome::Done;
    case TsimLink::Result::Ok: break;
    }
    return Outcome::Done;
}

TsimSession::Outcome TsimSession::sendBlocks(const std::string &command, const std::uint8_t *data, std::size_t blocks)
{
    for (std::size_t i = 0; i < blocks; ++i) {
        const int block = static_cast<int>(i);
        if (m_faults.hits(Kind::CloseAtBlock, command, block)) {
            log("fault: closing at block " + std::to_string(block));
            return Outcome::Drop;
        }
        const bool shortBlock = m_faults.hits(Kind::ShortBlock, command, block);
        TsimLink::Result result = m_link.write(data + i * BlockSize, shortBlock ? BlockSize / 2 : BlockSize);
        if (result != TsimLink::Result::Ok)
            return failed(result, command + " block " + std::to_string(block));
        if (shortBlock) {
            log("fault: block " + std::to_string(block) + " sent short, stopped");
            return Outcome::Done;
        }
        if (m_faults.hits(Kind::StopAfterBlock, command, block)) {
            log("fault: stopped after block " + std::to_string(block));
            return Outcome::Done;
        }
    }
    log(command + " sent " + std::to_string(blocks) + " blocks");
    return Outcome::Done;
}

TsimSession::Outcome TsimSession::receiveBlocks(const std::string &command, TsimMemory::Area area)
{
    TsimLink::Result result = m_link.write("*\r");
    if (result != TsimLink::Result::Ok)
        return failed(result, command);
    const std::size_t blocks = TsimMemory::blockCount(area);
    // Received blocks go to a staging copy: an interrupted put leaves the memory as it was.
    std::vector<std::uint8_t> staging(TsimMemory::areaSize(area));
    for (std::size_t i = 0; i < blocks; ++i) {
        const int block = static_cast<int>(i);
        const bool last = i + 1 == blocks;
        if (m_faults.hits(Kind::CloseAtBlock, command, block)) {
            log("fault: closing at block " + std::to_string(block));
            return Outcome::Drop;
        }
        result = m_link.readExact(staging.data() + i * BlockSize, BlockSize, m_settings.putTimeoutMs);
        if (result != TsimLink::Result::Ok)
            return failed(result, command + " block " + std::to_string(block) + ", put dropped");
        if (m_faults.hits(Kind::NoAckBlock, command, block)) {
            log("fault: block " + std::to_string(block) + " not acknowledged, put dropped");
            return Outcome::Done;
        }
        if (m_faults.hits(Kind::BadAckBlock, command, block)) {
            m_link.write(last ? "C\r" : "*\r");
            log("fault: block " + std::to_string(block) + " acknowledged wrongly, put dropped");
            return Outcome::Done;
        }
        if (m_faults.hits(Kind::WrongStore, command, block)) {
            staging[i * BlockSize] ^= 0xFF;
            log("fault: block " + std::to_string(block) + " stored wrongly");
        }
        // The last acknowledgement says the put is stored: store first, so a PC that
        // has it never finds the memory without the put (also when we are stopped
        // while that acknowledgement is still on the line).
        if (last)
            store(command, area, staging);
        result = m_link.write(last ? "*\r" : "C\r");
        if (result != TsimLink::Result::Ok)
            return failed(result, command + " block " + std::to_string(block) + (last ? "" : ", put dropped"));
    }
    return Outcome::Done;
}

void TsimSession::store(const std::string &command, TsimMemory::Area area, const std::vector<std::uint8_t> &image)
{
    const std::size_t blocks = TsimMemory::blockCount(area);
    m_memory.image(area) = image;
    if (m_settings.memoryFile.empty())
        log(command + " stored " + std::to_string(blocks) + " blocks");
    else if (m_memory.save(m_settings.memoryFile))
        log(command + " stored " + std::to_string(blocks) + " blocks in " + m_settings.memoryFile.string());
    else
        log(command + " received, but " + m_settings.memoryFile.string() + " could not be written");
}
