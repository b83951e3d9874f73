#pragma once
// The analyzer side of the command protocol on one link: four-letter commands
// ending in CR, 264-byte blocks, "C\r" / "*\r" acknowledgements on puts.
#include "TsimFaults.h"
#include "TsimLink.h"
#include "TsimMemory.h"
#include <filesystem>
#include <string>
#include <vector>

class TsimSession {
public:
    struct Settings {
        std::filesystem::path memoryFile; // empty: memory lives in the process only
        int putTimeoutMs = 5000;          // a put whose next block is this late is dropped
    };

    TsimSession(TsimLink &link, TsimMemory &memory, const TsimFaults &faults, const Settings &settings);

    // Serves the complete commands in the link's input. False when the link is
    // to be dropped (closed by the PC, a close fault, or a stop request).
    bool serveInput();

    // The 264-byte reply to "GESI\r": model, serial number and firmware, each a
    // 0-padded text field (32, 16 and 16 bytes), the rest 0.
    static std::string identificationBlock();

private:
    enum class Outcome { Done, Drop };
    Outcome serve(const std::string &command);
    Outcome sendBlocks(const std::string &command, const std::uint8_t *data, std::size_t blocks);
    Outcome receiveBlocks(const std::string &command, TsimMemory::Area area);
    Outcome failed(TsimLink::Result result, const std::string &what);
    void store(const std::string &command, TsimMemory::Area area, const std::vector<std::uint8_t> &image);
    void log(const std::string &text) const;

    TsimLink &m_link;
    TsimMemory &m_memory;
    const TsimFaults &m_faults;
    Settings m_settings;
    bool m_silent = false;
};
