// Times the checkitem editor opened from the frame on 250 checkitems: from the press
// of "Edit Checkitem Database" until the editor is on screen with its grid painted.
//   bench_checkitem_editor [--runs N]      (offscreen unless a display platform is chosen)
#include "AutoSequenceEditorFrame.h"
#include "MessageSink.h"
#include "TInstrDatabase.h"
#include "instEdit.h"
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <vector>

namespace fs = std::filesystem;

namespace {
constexpr double TargetMs = 150.0;
constexpr int CheckitemCount = 250;

class BenchMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &message) override
    {
        std::cerr << "bench_editor: " << message.caption << ": " << message.text << "\n";
        failed = true;
        return MsgAnswer::Ok;
    }
    bool failed = false;
};

// The demo application folder with the first 250 slots all in use, every op code
// and category taking turns and commands of full length.
void prepareFolder(const fs::path &folder)
{
    fs::copy(KT930_BENCH_APPDIR "/Data", folder / "Data", fs::copy_options::recursive);
    struct Sample {
        char opCode;
        const char *command;
    };
    const Sample samples[] = {{'P', "Mains plug free of damage and strain relief"}, {'K', "Connect the device"},
                              {'M', "EB\t0\t5"}, {'L', "IR\t2\t9999\t500\t5"}, {'C', "MAINS\t1"},
                              {'I', "Enter asset number\t12"}, {'T', "Operate all controls\t120"}, {'D', "30"}};
    const char categories[] = " AEFILP";
    TInstrDatabase checkitems;
    for (int i = 0; i < CheckitemCount; ++i) {
        const Sample &sample = samples[i % std::size(samples)];
        checkitems[std::size_t(i)].assign(categories[i % (sizeof categories - 1)], sample.opCode, sample.command);
    }
    TInstrDatabase::saveMasterTable(checkitems.slots(), folder / "Data" / "mit.dat");
}

// One opening: the press, the modal editor, its grid painted; then OK closes it.
double openOnce(TAutoSeqEditFrame &frame)
{
    QElapsedTimer timer;
    double milliseconds = -1;
    auto *poll = new QTimer(&frame);
    poll->setInterval(0);
    QObject::connect(poll, &QTimer::timeout, [&] {
        auto *editor = qobject_cast<TinstructionEditorForm *>(QApplication::activeModalWidget());
        if (!editor || !editor->isVisible())
            return;
        poll->stop();
        auto *grid = editor->findChild<QTableView *>("instList");
        grid->viewport()->repaint();
        milliseconds = timer.nsecsElapsed() / 1e6;
        if (grid->model()->rowCount() != CheckitemCount)
            std::fprintf(stderr, "bench_checkitem_editor: the grid has %d rows\n", grid->model()->rowCount());
        editor->findChild<QPushButton *>("btnOk")->click();
    });
    poll->start();
    timer.start();
    frame.findChild<QPushButton *>("BtnInstEd")->click();
    delete poll;
    return milliseconds;
}
}

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int runs = 10;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::strcmp(argv[i], "--runs") == 0)
            runs = std::max(1, std::atoi(argv[i + 1]));

    QTemporaryDir folder;
    prepareFolder(folder.path().toStdString());
    qputenv("KT930PC_APPDIR", folder.path().toLocal8Bit());
    // The editor writes its trace to the current folder.
    QDir::setCurrent(folder.path());

    BenchMessageSink messages;
    TPluginHostInfo host;
    TAutoSeqEditFrame frame(nullptr, &host, nullptr, &messages);
    std::vector<double> times;
    for (int run = 0; run < runs; ++run)
        times.push_back(openOnce(frame));
    const double first = times.front();
    std::sort(times.begin(), times.end());
    const double median = times[times.size() / 2], worst = times.back();
    const bool ok = !messages.failed && worst >= 0 && worst < TargetMs;
    std::printf("editor from the frame, %d checkitems: first %.1f ms, median %.1f ms, worst %.1f ms of %d runs"
                "  target < %.0f ms %s\n",
                CheckitemCount, first, median, worst, runs, TargetMs, ok ? "ok" : "MISSED");
    return ok ? 0 : 1;
}
