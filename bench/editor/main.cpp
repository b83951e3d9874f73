// Start-up and editor figures of the frame inside the host window: construction of
// the frame with its data set up to its first paint, ReloadData, the save of the
// checkitems, physical inspections and user testers, and the process's peak resident
// memory with the frame shown. One data set per run, printed as one table row.
//   bench_editor demo     the demo application folder
//   bench_editor full     250 checkitems, every sequence of 24 items, 500 checklists of 96
#include "AutosequenceConversions.h"
#include "FullDataSet.h"
#include "MessageSink.h"
#include "TdataSet.h"
#include "TempDir.h"
#include "ThostMainWindow.h"
#include "VAROAutoSeqEditor.h"
#include "autosequenceFileStructs.h"
#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <vector>

namespace fs = std::filesystem;

namespace {
constexpr double FirstPaintTargetMs = 150, SaveTargetMs = 50;
constexpr int Repeats = 7;

class NullSink : public MessageSink {
public:
    MsgAnswer show(const Message &m) override
    {
        std::fprintf(stderr, "bench_editor: %s: %s\n", m.caption.c_str(), m.text.c_str());
        return MsgAnswer::Ok;
    }
};

// An application folder with the built plug-in and op codes, and the full data set.
void makeFullAppDir(const fs::path &dir)
{
    const fs::path built(KT930_BENCH_APPDIR);
    fs::create_directory_symlink(built / "Plugins", dir / "Plugins");
    fs::create_directories(dir / "Data");
    for (const auto &entry : fs::directory_iterator(built / "Data"))
        if (entry.path().extension() == ".in" || entry.path().filename() == "catdes.dat")
            fs::copy_file(entry.path(), dir / "Data" / entry.path().filename());
    NullSink sink;
    TdataSet set(dir, sink);
    FullDataSet::fill(set, 0);
    set.backup();
    TautosequenceFile checklists;
    AutosequenceConversions::checklistsToFile(set.checklists, checklists);
    checklists.write(set.dataFile("testProc.asq"));
}

// Notes the first paint of the frame or of anything inside it.
class FirstPaint : public QObject {
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !painted && watched->isWidgetType()) {
            for (QObject *o = watched; o; o = o->parent())
                if (dynamic_cast<Tkt930Frame *>(o)) {
                    painted = true;
                    break;
                }
        }
        return false;
    }
    bool painted = false;
};

template <typename Action> double medianMs(Action action)
{
    std::vector<double> times;
    for (int i = 0; i < Repeats; ++i) {
        QElapsedTimer timer;
        timer.start();
        action();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

long peakResidentKb()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmHWM:", 0) == 0)
            return std::atol(line.c_str() + 6);
    return -1;
}
}

int main(int argc, char **argv)
{
    const bool full = argc > 1 && std::strcmp(argv[1], "full") == 0;
    TempDir scratch;
    const fs::path appDir = full ? scratch.path() : fs::path(KT930_BENCH_APPDIR);
    if (full)
        makeFullAppDir(appDir);
    qputenv("KT930PC_APPDIR", appDir.string().c_str());
    QApplication app(argc, argv);

    const fs::path build(KT930_BENCH_APPDIR);
    ThostMainWindow window(TappFolders{appDir, build / "Plugins", build, {}, "benchmark"});
    window.show();
    if (!QTest::qWaitForWindowExposed(&window) || window.pluginCount() < 1) {
        std::fprintf(stderr, "bench_editor: the host window did not come up with its plug-in\n");
        return 1;
    }
    FirstPaint watcher;
    app.installEventFilter(&watcher);
    QElapsedTimer timer;
    timer.start();
    window.showPlugin(0);
    const double constructedMs = timer.nsecsElapsed() / 1e6;
    (void)QTest::qWaitFor([&] { return watcher.painted; }, 10000);
    const double paintedMs = timer.nsecsElapsed() / 1e6;
    app.removeEventFilter(&watcher);
    auto *frame = window.container()->findChild<Tkt930Frame *>();
    if (!watcher.painted || !frame) {
        std::fprintf(stderr, "bench_editor: the frame was not painted\n");
        return 1;
    }
    const double reloadMs = medianMs([&] { frame->ReloadData(); });
    const double saveMs = medianMs([&] { QMetaObject::invokeMethod(frame, "BtnBackupClick"); });

    std::printf("| %s | %.1f ms | %.1f ms (< %.0f ms %s) | %.1f ms | %.1f ms (< %.0f ms %s) | %.1f MB |\n",
                full ? "full (250 checkitems, 78 sequences of 24, 500 checklists of 96)" : "demo", constructedMs,
                paintedMs, FirstPaintTargetMs, paintedMs < FirstPaintTargetMs ? "ok" : "MISSED", reloadMs, saveMs,
                SaveTargetMs, saveMs < SaveTargetMs ? "ok" : "MISSED", peakResidentKb() / 1024.0);
    return 0;
}
