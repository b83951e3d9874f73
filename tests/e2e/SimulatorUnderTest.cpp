#include "SimulatorUnderTest.h"
#include "LoopbackAddress.h"
#include "TCommPort.h"
#include <cstdio>

SimulatorUnderTest::SimulatorUnderTest(Link link, const KnownImages &memory, const std::vector<std::string> &faults,
                                       int baud)
    : m_link(link), m_memoryFile(m_temp.write("memory.bin", memory.memoryFile()))
{
    std::vector<std::string> arguments{"--memory", m_memoryFile.string()};
    if (link == Link::Tcp) {
        m_address = freshAddress();
        arguments.insert(arguments.end(), {"--listen", m_address + ":60601"});
    } else {
        arguments.insert(arguments.end(), {"--pty", (m_temp / "analyzer-tty").string()});
        TCommPort::setPortOverrides({{PtyComPort, (m_temp / "analyzer-tty").string()}});
    }
    if (baud)
        arguments.insert(arguments.end(), {"--baud", std::to_string(baud)});
    for (const std::string &fault : faults)
        arguments.insert(arguments.end(), {"--fault", fault});
    m_process = std::make_unique<TsimProcess>(arguments);
    m_ready = m_process->waitForLog("ready"); // its links exist from then on
}

SimulatorUnderTest::~SimulatorUnderTest()
{
    m_process.reset();
    if (m_link == Link::Pty)
        TCommPort::setPortOverrides({});
}

TtransferJob::Parameters SimulatorUnderTest::job(TtransferJob::Kind kind, std::uint8_t selection) const
{
    TtransferJob::Parameters parameters{
        .kind = kind, .method = TcommMethod::Serial, .serialPort = PtyComPort, .selection = selection};
    if (m_link == Link::Tcp) {
        parameters.method = TcommMethod::Ethernet;
        std::sscanf(m_address.c_str(), "%d.%d.%d.%d", &parameters.ip[0], &parameters.ip[1], &parameters.ip[2],
                    &parameters.ip[3]);
    }
    return parameters;
}

KnownImages SimulatorUnderTest::stopAndReadMemory()
{
    m_process->stop();
    return KnownImages::fromMemoryFile(TempDir::read(m_memoryFile));
}

std::string SimulatorUnderTest::freshAddress()
{
    static int counter = 0;
    return LoopbackAddress(++counter, 128).text();
}
