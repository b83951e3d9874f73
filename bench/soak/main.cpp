// Reliability soak: saves killed and starved, then transfers against kt930sim with
// faults chosen at random, all in this one process, for a given time.
//   kt930soak [--kills N] [--starved N] [--minutes M] [--seed S]
// Prints a table of what ran and what went wrong; exits 1 when anything did.
#include "../transfer/BenchMessageSink.h"
#include "../transfer/BenchProgressSink.h"
#include "../transfer/BenchSimulator.h"
#include "FullDataSet.h"
#include "SaveUnderFaults.h"
#include "TdataSet.h"
#include "TempDir.h"
#include "TransferImages.h"
#include "TtransferJob.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <string>

namespace fs = std::filesystem;

namespace {
constexpr int LineBaud = 19200;
constexpr double WorstTimeoutSeconds = 10; // connect, handshake and one 2 s time-out, with room

enum class Link { Tcp, Pty, PacedPty };
enum class Kind { Download, Upload, Sync };
const TtransferJob::Kind JobKinds[] = {TtransferJob::Kind::Download, TtransferJob::Kind::Upload,
                                       TtransferJob::Kind::Sync};
const char *const LinkNames[] = {"TCP", "pty", "pty 19200"};
const char *const KindNames[] = {"download", "upload", "sync"};

class CountingMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &) override
    {
        ++count;
        return MsgAnswer::Ok;
    }
    int count = 0;
};

long statusField(const char *field)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(field, 0) == 0)
            return std::atol(line.c_str() + std::strlen(field));
    return -1;
}

struct Resources {
    long descriptors = 0, threads = 0, residentKb = 0;
    static Resources now()
    {
        Resources r;
        r.descriptors = static_cast<long>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
        r.threads = statusField("Threads:");
        r.residentKb = statusField("VmRSS:");
        return r;
    }
};

// The containers as the analyzer's images, byte for byte, in the order of its memory file.
std::string imagesOf(TdataSet &set)
{
    std::string checkitems(TransferImages::CheckitemBytes, '\0'), autosequences(TransferImages::AutosequenceBytes, '\0'),
        checklists(TransferImages::ChecklistBytes, '\0');
    auto bytes = [](std::string &image) { return reinterpret_cast<std::uint8_t *>(image.data()); };
    TransferImages::packCheckitems(set.checkitems, bytes(checkitems));
    TransferImages::packAutosequences(set.inspections, set.userTesters, bytes(autosequences));
    TransferImages::packChecklists(set.checklists, bytes(checklists));
    return checkitems + autosequences + checklists;
}

std::string filesOf(const fs::path &folder)
{
    std::string all;
    for (const char *name : {"mit.dat", "inspection.asq", "usertester1.asq", "usertester2.asq", "usertester3.asq",
                             "usertester4.asq", "usertester5.asq"})
        all += std::string(name) + "=" + TempDir::read(folder / name) + "\n";
    return all;
}

struct TransferFigures {
    long transfers = 0, faults = 0, failures = 0, filesChangedByFailures = 0, overtime = 0,
         uploadsNotStored = 0, perKind[3] = {}, perLink[3] = {};
    double worstShareOfBound = 0; // the longest transfer against its own time-out bound
};

class TransferSoak {
public:
    explicit TransferSoak(unsigned seed) : m_random(seed), m_pc(m_temp.path(), m_loadMessages)
    {
        fs::create_directories(m_temp / "Data");
        for (const auto &entry : fs::directory_iterator(fs::path(KT930_BENCH_APPDIR) / "Data"))
            if (entry.path().extension() == ".in")
                fs::copy_file(entry.path(), m_temp / "Data" / entry.path().filename());
        FullDataSet::fill(m_pc, 0);
        m_pc.backup();
    }

    void runOne(TransferFigures &figures)
    {
        const Kind kind = Kind(m_random() % 3);
        const Link link = Link(m_random() % 10 < 2 ? 2 : m_random() % 2);
        // A paced line carries only the autosequences (3.7 s) and, now and then, a sync (24 s).
        std::uint8_t selection = SelectAll;
        if (link == Link::PacedPty)
            selection = SelectAutosequences;
        if (link == Link::PacedPty && kind == Kind::Sync && m_random() % 4 != 0)
            return;
        if (kind == Kind::Upload && m_random() % 3 == 0)
            FullDataSet::fill(m_pc, int(m_random() % 100));

        QStringList extra{"--memory", QString::fromStdString((m_temp / "memory.bin").string())};
        const std::string fault = chooseFault(kind, selection);
        if (!fault.empty()) {
            extra << "--fault" << QString::fromStdString(fault);
            ++figures.faults;
        }
        const int baud = link == Link::PacedPty ? LineBaud : 0;
        auto sim = std::make_unique<BenchSimulator>(link != Link::Tcp, baud, extra);
        if (!sim->waitReady()) {
            std::fprintf(stderr, "kt930soak: the simulator did not start\n");
            ++figures.failures;
            return;
        }

        const std::string imagesBefore = imagesOf(m_pc);
        const std::string filesBefore = filesOf(m_pc.dataFolder());
        BenchProgressSink progress;
        CountingMessageSink messages;
        TtransferJob::Parameters parameters;
        parameters.kind = JobKinds[int(kind)];
        parameters.data = &m_pc;
        parameters.context = &m_pc;
        parameters.selection = selection;
        sim->aim(parameters);
        TtransferJob job(parameters, messages);
        QThread &worker = job.makeWorker(progress);
        std::size_t bytes = 264;
        if (kind == Kind::Sync)
            bytes += TransferImages::CheckitemBytes;
        else
            bytes += selection == SelectAll ? 185064 : TransferImages::AutosequenceBytes;
        QElapsedTimer timer;
        timer.start();
        worker.start();
        worker.wait();
        const double seconds = timer.nsecsElapsed() / 1e9;
        const double bound = (baud ? bytes * 10.0 / baud * 1.1 : 2.0) + WorstTimeoutSeconds;

        ++figures.transfers;
        figures.worstShareOfBound = std::max(figures.worstShareOfBound, seconds / bound);
        ++figures.perKind[int(kind)];
        ++figures.perLink[int(link)];
        if (seconds > bound) {
            ++figures.overtime;
            std::fprintf(stderr, "kt930soak: %s over %s with fault \"%s\" took %.1f s, bound %.1f s\n",
                         KindNames[int(kind)], LinkNames[int(link)], fault.c_str(), seconds, bound);
        }
        const bool ok = progress.result == TransferResult::Ok;
        if (!ok) {
            ++figures.failures;
            if (imagesOf(m_pc) != imagesBefore || filesOf(m_pc.dataFolder()) != filesBefore) {
                ++figures.filesChangedByFailures;
                std::fprintf(stderr, "kt930soak: a failed %s over %s with fault \"%s\" changed the data set\n",
                             KindNames[int(kind)], LinkNames[int(link)], fault.c_str());
            }
            return;
        }
        if (kind == Kind::Upload) {
            // Stopped, the simulator has written every completed put to its memory file.
            sim.reset();
            checkStored(imagesBefore, selection, figures, fault);
            return;
        }
        job.takeOver();
        job.save();
    }

private:
    std::string chooseFault(Kind kind, std::uint8_t selection)
    {
        if (m_random() % 5 < 2)
            return {};
        const bool paced = selection != SelectAll;
        const char *gets[] = {"GUIN", "GASQ", "GTSP"};
        const char *puts[] = {"PUIN", "PASQ", "PTSP"};
        const int blocks[] = {174, 27, 500};
        int which = paced ? 1 : int(m_random() % 3);
        if (kind == Kind::Sync)
            which = 0;
        const std::string command = kind == Kind::Upload ? puts[which] : gets[which];
        const std::string block = std::to_string(m_random() % blocks[which]) + "@" + command;
        static const char *const getFaults[] = {"stop-after-block=", "short-block=", "close-at-block="};
        static const char *const putFaults[] = {"close-at-block=", "bad-ack-block=", "no-ack-block="};
        switch (m_random() % 4) {
        case 0:
            return "silent-after=" + std::string(m_random() % 2 ? "GESI" : command);
        default:
            return (kind == Kind::Upload ? putFaults : getFaults)[m_random() % 3] + block;
        }
    }

    void checkStored(const std::string &sent, std::uint8_t selection, TransferFigures &figures,
                     const std::string &fault)
    {
        const std::string memory = TempDir::read(m_temp / "memory.bin");
        bool same = memory.size() == sent.size();
        const struct {
            std::uint8_t bit;
            std::size_t offset, size;
        } areas[] = {{SelectCheckitems, 0, TransferImages::CheckitemBytes},
                     {SelectAutosequences, TransferImages::CheckitemBytes, TransferImages::AutosequenceBytes},
                     {SelectChecklists, TransferImages::CheckitemBytes + TransferImages::AutosequenceBytes,
                      TransferImages::ChecklistBytes}};
        for (const auto &area : areas)
            if (same && (selection & area.bit))
                same = memory.compare(area.offset, area.size, sent, area.offset, area.size) == 0;
        if (!same) {
            ++figures.uploadsNotStored;
            std::fprintf(stderr, "kt930soak: a completed upload (fault \"%s\") is not what the simulator holds\n",
                         fault.c_str());
        }
    }

    std::mt19937 m_random;
    TempDir m_temp;
    BenchMessageSink m_loadMessages;
    TdataSet m_pc;
};

void printResources(const char *when, const Resources &r)
{
    std::printf("| %s | %ld | %ld | %ld KB |\n", when, r.descriptors, r.threads, r.residentKb);
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    int kills = 0, starved = 0;
    double minutes = 0;
    unsigned seed = 930;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--kills"))
            kills = std::atoi(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--starved"))
            starved = std::atoi(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--minutes"))
            minutes = std::atof(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--seed"))
            seed = unsigned(std::atoi(argv[i + 1]));
    }
    bool clean = true;

    if (kills > 0) {
        const auto f = SaveUnderFaults::killSaves(KT930_SAVELOOP, kills, seed);
        std::printf("Killed saves (full data set, SIGKILL at a random moment, judged as the next load sees the set)\n");
        std::printf("| kills | mixed sets seen by the next load | files checked | torn | temporaries after the next load "
                    "| temporaries after the next save |\n|---|---|---|---|---|---|\n");
        std::printf("| %d | %d | %d | %d | %d | %d |\n\n", f.kills, f.killedBetweenFiles, f.filesChecked, f.torn,
                    f.leftoversAfterKill, f.leftoversAtEnd);
        clean &= f.torn == 0 && f.killedBetweenFiles == 0 && f.leftoversAfterKill == 0 && f.leftoversAtEnd == 0;
    }
    if (starved > 0) {
        std::mt19937 random(seed);
        std::vector<std::size_t> limits;
        for (int i = 0; i < starved; ++i)
            limits.push_back(random() % 50000);
        const auto f = SaveUnderFaults::starveSaves(limits);
        std::printf("Starved saves (file size limit from 0 to 50000 bytes at random)\n");
        std::printf("| saves | files refused | saves with wrong messages | files changed by a failure | "
                    "temporaries left |\n|---|---|---|---|---|\n");
        std::printf("| %d | %d | %d | %d | %d |\n\n", f.saves, f.filesFailed, f.wrongMessages, f.changedByFailure,
                    f.leftovers);
        clean &= f.wrongMessages == 0 && f.changedByFailure == 0 && f.leftovers == 0;
    }
    if (minutes > 0) {
        TransferSoak soak(seed);
        TransferFigures f;
        QElapsedTimer elapsed;
        elapsed.start();
        const Resources initial = Resources::now();
        Resources start = initial;
        const qint64 end = qint64(minutes * 60000);
        while (elapsed.elapsed() < end) {
            soak.runOne(f);
            // Measured after the first transfers, once every kind of worker has run.
            if (f.transfers == 20)
                start = Resources::now();
        }
        const Resources last = Resources::now();
        std::printf("Transfer soak (%.1f minutes, one process)\n", elapsed.elapsed() / 60000.0);
        std::printf("| transfers | downloads / uploads / syncs | TCP / pty / pty 19200 | faults injected | "
                    "failures seen | over their time-out bound (longest: share of its bound) | completed uploads not stored | "
                    "files changed by failures |\n|---|---|---|---|---|---|---|---|\n");
        std::printf("| %ld | %ld / %ld / %ld | %ld / %ld / %ld | %ld | %ld | %ld (%.2f) | %ld | %ld |\n\n", f.transfers,
                    f.perKind[0], f.perKind[1], f.perKind[2], f.perLink[0], f.perLink[1], f.perLink[2], f.faults,
                    f.failures, f.overtime, f.worstShareOfBound, f.uploadsNotStored, f.filesChangedByFailures);
        std::printf("| process | open descriptors | threads | resident memory |\n|---|---|---|---|\n");
        printResources("at the start", initial);
        printResources("after the first 20 transfers", start);
        printResources("at the end", last);
        std::printf("\n");
        clean &= f.overtime == 0 && f.uploadsNotStored == 0 && f.filesChangedByFailures == 0
            && last.descriptors <= start.descriptors && last.threads <= start.threads
            && last.residentKb <= start.residentKb + 4096;
    }
    std::printf("%s\n", clean ? "Nothing lost, nothing grew." : "FAILED: see above.");
    return clean ? 0 : 1;
}
