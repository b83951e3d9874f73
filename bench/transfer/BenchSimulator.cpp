#include "BenchSimulator.h"
#include "TCommPort.h"
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTcpSocket>
#include <QThread>
#include <unistd.h>

namespace {
constexpr int ReadyGuardMs = 5000;
}

BenchSimulator::BenchSimulator(bool pty, int baud, const QStringList &extra) : m_pty(pty)
{
    QStringList arguments{"--appdir", KT930_BENCH_APPDIR};
    if (pty) {
        m_link = m_temp.filePath("analyzer-tty").toStdString();
        arguments << "--pty" << QString::fromStdString(m_link);
        TCommPort::setPortOverrides({{PtyComPort, m_link}});
    } else {
        // Away from the addresses the tests use.
        m_address = "127.16." + std::to_string(::getpid() & 255) + ".1"; // apart from the tests' ranges
        arguments << "--listen" << QString::fromStdString(m_address + ":60601");
    }
    if (baud > 0)
        arguments << "--baud" << QString::number(baud);
    arguments << extra;
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(QString(KT930_BENCH_APPDIR) + "/kt930sim", arguments);
}

BenchSimulator::~BenchSimulator()
{
    m_process.terminate();
    m_process.waitForFinished(ReadyGuardMs);
    if (m_pty)
        TCommPort::setPortOverrides({});
}

bool BenchSimulator::waitReady()
{
    if (!m_process.waitForStarted(ReadyGuardMs))
        return false;
    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < ReadyGuardMs && m_process.state() == QProcess::Running) {
        if (m_pty) {
            if (QFileInfo::exists(QString::fromStdString(m_link)))
                return true;
        } else {
            QTcpSocket probe;
            probe.connectToHost(QString::fromStdString(m_address), 60601);
            if (probe.waitForConnected(100))
                return true;
        }
        QThread::msleep(5);
    }
    return false;
}

void BenchSimulator::aim(TtransferJob::Parameters &parameters) const
{
    if (m_pty) {
        parameters.method = TcommMethod::Serial;
        parameters.serialPort = PtyComPort;
        return;
    }
    parameters.method = TcommMethod::Ethernet;
    std::sscanf(m_address.c_str(), "%d.%d.%d.%d", &parameters.ip[0], &parameters.ip[1], &parameters.ip[2],
                &parameters.ip[3]);
}
