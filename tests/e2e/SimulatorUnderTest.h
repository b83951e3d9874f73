#pragma once
// The real kt930sim for one test: its own memory file (written from known images) in a temporary folder, and its own
// link: a fresh loopback address on port 60601 or a pseudo-terminal reached as a COM port through the port overrides.
#include "KnownDataSet.h"
#include "TempDir.h"
#include "TsimProcess.h"
#include "TtransferJob.h"
#include <memory>

class SimulatorUnderTest {
public:
    enum class Link { Tcp, Pty };
    static constexpr int PtyComPort = 250;

    // baud: when non-zero the simulator sends no faster than a serial line of that rate.
    SimulatorUnderTest(Link link, const KnownImages &memory, const std::vector<std::string> &faults = {}, int baud = 0);
    ~SimulatorUnderTest();

    bool ready() const { return m_ready; } // takes connections
    TtransferJob::Parameters job(TtransferJob::Kind kind, std::uint8_t selection = SelectAll) const;
    // Stops the simulator (so every put it acknowledged is on disk) and reads its memory file.
    KnownImages stopAndReadMemory();
    TsimProcess &process() { return *m_process; }
    const std::string &address() const { return m_address; }
    static std::string freshAddress(); // a loopback address no other test (of any test program) uses

private:
    TempDir m_temp;
    Link m_link;
    std::string m_address;
    std::filesystem::path m_memoryFile;
    std::unique_ptr<TsimProcess> m_process;
    bool m_ready = false;
};
