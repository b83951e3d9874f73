// Times a full download, a full upload (all three sets) and a checkitem sync against
// kt930sim over loopback TCP and over a pseudo-terminal paced like a 19200-baud line
// in both directions, and prints a table.
//   bench_transfer [--tcp] [--serial] [--download] [--upload] [--sync]
// Without --tcp or --serial both links are measured; without a transfer named, all three.
#include "BenchSimulator.h"
#include "BenchMessageSink.h"
#include "BenchProgressSink.h"
#include "TdataSet.h"
#include "TtransferJob.h"
#include <QThread>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {
constexpr int Baud = 19200;
constexpr double LoopbackUploadTarget = 1.0, LoopbackDownloadTarget = 1.2, LoopbackSyncTarget = 0.5, LineTarget = 1.05;

// Bytes each way: four 5-byte commands, the 264-byte handshake reply, 701 blocks of
// 264 bytes, and for a put the command and block acknowledgements. A sync is the
// handshake and "GUIN\r" with its 174 blocks.
constexpr long Commands = 4 * 5, Handshake = 264, Blocks = 174 + 27 + 500, Data = Blocks * 264;
constexpr long DownloadToPc = Handshake + Data, DownloadToAnalyzer = Commands;
constexpr long UploadToPc = Handshake + 3 * 2 + Blocks * 2, UploadToAnalyzer = Commands + Data;
constexpr long SyncToPc = Handshake + 174 * 264, SyncToAnalyzer = 2 * 5;

using Transfer = TtransferJob::Kind;

struct Measurement {
    bool ok = false;
    double seconds = 0;
};

Measurement run(bool pty, int baud, Transfer transfer, TdataSet &data)
{
    BenchSimulator sim(pty, baud);
    if (!sim.waitReady()) {
        std::fprintf(stderr, "bench_transfer: the simulator did not start\n");
        return {};
    }
    BenchProgressSink progress;
    BenchMessageSink messages;
    TtransferJob::Parameters parameters;
    parameters.kind = transfer;
    parameters.data = &data;
    parameters.context = &data;
    sim.aim(parameters);
    TtransferJob job(parameters, messages);
    QThread &worker = job.makeWorker(progress);
    QElapsedTimer timer;
    timer.start();
    worker.start();
    worker.wait();
    return {progress.result == TransferResult::Ok, timer.nsecsElapsed() / 1e9};
}

// A line of 10 bits a byte; the protocol waits for each reply, so both directions add up.
double lineSeconds(long bytes)
{
    return double(bytes) * 10.0 / Baud;
}

void report(const char *link, const char *name, const Measurement &m, long toPc, long toAnalyzer, bool paced,
            double loopbackTarget)
{
    std::printf("| %s | %s | %s%.3f s | %ld | %ld | ", link, name, m.ok ? "" : "FAILED ", m.seconds, toPc, toAnalyzer);
    if (paced) {
        const double limit = lineSeconds(toPc + toAnalyzer), ratio = m.seconds / limit;
        std::printf("%.3f s | %.3f | <= %.2f x limit %s |\n", limit, ratio, LineTarget,
                    m.ok && ratio <= LineTarget ? "ok" : "MISSED");
    } else {
        std::printf("- | - | < %.1f s %s |\n", loopbackTarget, m.ok && m.seconds < loopbackTarget ? "ok" : "MISSED");
    }
    std::fflush(stdout);
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    bool tcp = false, serial = false, download = false, upload = false, sync = false;
    for (int i = 1; i < argc; ++i) {
        tcp |= std::strcmp(argv[i], "--tcp") == 0;
        serial |= std::strcmp(argv[i], "--serial") == 0;
        download |= std::strcmp(argv[i], "--download") == 0;
        upload |= std::strcmp(argv[i], "--upload") == 0;
        sync |= std::strcmp(argv[i], "--sync") == 0;
    }
    if (!tcp && !serial)
        tcp = serial = true;
    if (!download && !upload && !sync)
        download = upload = sync = true;

    BenchMessageSink loadMessages;
    TdataSet data(KT930_BENCH_APPDIR, loadMessages);
    data.loadAll();

    std::printf("| link | transfer | time | bytes to PC | bytes to analyzer | line's limit | ratio | target |\n"
                "|---|---|---|---|---|---|---|---|\n");
    for (bool paced : {false, true}) {
        if (paced ? !serial : !tcp)
            continue;
        const char *link = paced ? "pty, 19200 baud both ways" : "loopback TCP";
        const int baud = paced ? Baud : 0;
        if (download)
            report(link, "full download", run(paced, baud, Transfer::Download, data), DownloadToPc,
                   DownloadToAnalyzer, paced, LoopbackDownloadTarget);
        if (upload)
            report(link, "full upload", run(paced, baud, Transfer::Upload, data), UploadToPc, UploadToAnalyzer, paced,
                   LoopbackUploadTarget);
        if (sync)
            report(link, "checkitem sync", run(paced, baud, Transfer::Sync, data), SyncToPc, SyncToAnalyzer, paced,
                   LoopbackSyncTarget);
    }
    return 0;
}
