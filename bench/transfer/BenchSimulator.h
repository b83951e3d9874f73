#pragma once
// kt930sim started for one measurement, seeded from the demo data set, on a
// loopback address or a pseudo-terminal (optionally paced like a serial line).
#include "TtransferJob.h"
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <string>

class BenchSimulator {
public:
    static constexpr int PtyComPort = 251;

    // baud 0: as fast as the link goes; extra: more options (faults, a memory file).
    BenchSimulator(bool pty, int baud, const QStringList &extra = {});
    ~BenchSimulator();

    // False when the simulator did not come up within 5 s.
    bool waitReady();
    void aim(TtransferJob::Parameters &parameters) const;

private:
    bool m_pty;
    QTemporaryDir m_temp;
    std::string m_address;
    std::string m_link;
    QProcess m_process;
};
