// Times a full download and a full upload (all three sets) against kt930sim over
// loopback TCP and over a pseudo-terminal paced like a 19200-baud line.
//   bench_transfer [--tcp] [--serial] [--download] [--upload]
// Without --tcp or --serial both links are measured; without --download or --upload both directions.
#include "BenchSimulator.h"
#include "BenchMessageSink.h"
#include "BenchProgressSink.h"
#include "TdataSet.h"
#include "TransferWorkers.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {
constexpr int Baud = 19200;
constexpr double LoopbackUploadTarget = 1.0, LoopbackDownloadTarget = 1.2, LineTarget = 1.05;

// Bytes each way for a full transfer: four 5-byte commands, the 264-byte handshake
// reply, 701 blocks of 264 bytes, and for a put the command and block acknowledgements.
constexpr long Commands = 4 * 5, Handshake = 264, Blocks = 174 + 27 + 500, Data = Blocks * 264;
constexpr long DownloadToPc = Handshake + Data, DownloadToAnalyzer = Commands;
constexpr long UploadToPc = Handshake + 3 * 2 + Blocks * 2, UploadToAnalyzer = Commands + Data;

struct Measurement {
    bool ok = false;
    double seconds = 0;
};

Measurement run(bool pty, int baud, bool upload, TdataSet &data)
{
    BenchSimulator sim(pty, baud);
    if (!sim.waitReady()) {
        std::fprintf(stderr, "bench_transfer: the simulator did not start\n");
        return {};
    }
    BenchProgressSink progress;
    BenchMessageSink messages;
    int context = 0;
    std::unique_ptr<TtransferRecord> record;
    std::unique_ptr<TtransferThread> worker;
    if (upload) {
        auto put = std::make_unique<TuploadCommStruct>(&data.checkitems, &data.checklists, &data.userTesters,
                                                       &data.inspections);
        worker = std::make_unique<TuploadThread>(&context, &progress, &messages, put.get());
        record = std::move(put);
    } else {
        auto get = std::make_unique<TdownloadCommStruct>(&data.checkitems, &data.checklists, &data.userTesters,
                                                         &data.inspections);
        worker = std::make_unique<TdownloadThread>(&context, &progress, &messages, get.get());
        record = std::move(get);
    }
    sim.aim(record->settings());
    record->data.selection = SelectAll;
    QElapsedTimer timer;
    timer.start();
    worker->start();
    worker->wait();
    return {progress.result == TransferResult::Ok, timer.nsecsElapsed() / 1e9};
}

void report(const char *name, const Measurement &m, long toPc, long toAnalyzer, double limit, double target,
            bool ratioTarget)
{
    std::printf("%-34s %s %8.3f s  %7ld bytes to PC, %7ld to analyzer", name, m.ok ? "  " : "FAILED", m.seconds,
                toPc, toAnalyzer);
    if (ratioTarget) {
        double ratio = m.seconds / limit;
        std::printf("  line limit %7.3f s  ratio %.3f (target <= %.2f) %s\n", limit, ratio, target,
                    m.ok && ratio <= target ? "ok" : "MISSED");
    } else {
        std::printf("  target < %.1f s %s\n", target, m.ok && m.seconds < target ? "ok" : "MISSED");
    }
}

// A line of 10 bits a byte; the protocol waits for each reply, so both directions add up.
double lineSeconds(long bytes)
{
    return double(bytes) * 10.0 / Baud;
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    bool tcp = false, serial = false, download = false, upload = false;
    for (int i = 1; i < argc; ++i) {
        tcp |= std::strcmp(argv[i], "--tcp") == 0;
        serial |= std::strcmp(argv[i], "--serial") == 0;
        download |= std::strcmp(argv[i], "--download") == 0;
        upload |= std::strcmp(argv[i], "--upload") == 0;
    }
    if (!tcp && !serial)
        tcp = serial = true;
    if (!download && !upload)
        download = upload = true;

    BenchMessageSink loadMessages;
    TdataSet data(KT930_BENCH_APPDIR, loadMessages);
    data.loadAll();

    if (tcp && download)
        report("loopback TCP, full download", run(false, 0, false, data), DownloadToPc, DownloadToAnalyzer, 0,
               LoopbackDownloadTarget, false);
    if (tcp && upload)
        report("loopback TCP, full upload", run(false, 0, true, data), UploadToPc, UploadToAnalyzer, 0,
               LoopbackUploadTarget, false);
    if (serial && download)
        report("pty at 19200 baud, full download", run(true, Baud, false, data), DownloadToPc, DownloadToAnalyzer,
               lineSeconds(DownloadToPc + DownloadToAnalyzer), LineTarget, true);
    if (serial && upload) {
        Measurement m = run(true, Baud, true, data);
        report("pty at 19200 baud, full upload", m, UploadToPc, UploadToAnalyzer,
               lineSeconds(UploadToPc + UploadToAnalyzer), LineTarget, true);
        // A pseudo-terminal paces only what the simulator sends; against that part alone:
        std::printf("%-34s %11s  simulator's paced output alone %7.3f s  ratio %.3f\n", "", "",
                    lineSeconds(UploadToPc), m.seconds / lineSeconds(UploadToPc));
    }
    return 0;
}
