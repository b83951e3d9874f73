#include "SaveUnderFaults.h"
#include "AppDir.h"
#include "FullDataSet.h"
#include "ProgramRun.h"
#include "RecordingMessageSink.h"
#include "TdataSet.h"
#include "TempDir.h"
#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <random>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace SaveUnderFaults {
namespace {
// The data files by name; anything else but the lock, the restore points and the
// op-code and category files counts as a leftover.
Files readFiles(const fs::path &folder, int &others)
{
    const std::vector<std::string> dataNames = TdataSet::fileNames();
    Files files;
    others = 0;
    for (const auto &entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name == ".lock" || name == ".restore" || name == ".last-transfer" || name == "catdes.dat" ||
            entry.path().extension() == ".in")
            continue;
        if (std::find(dataNames.begin(), dataNames.end(), name) != dataNames.end())
            files[name] = TempDir::read(entry.path());
        else
            ++others;
    }
    return files;
}

void writeFiles(const fs::path &folder, const Files &files)
{
    fs::create_directories(folder);
    for (const auto &[name, bytes] : files)
        std::ofstream(folder / name, std::ios::binary | std::ios::trunc) << bytes;
}

Files loadedFiles(const fs::path &appDir, int &others)
{
    RecordingMessageSink sink;
    TdataSet(appDir, sink).loadAll();
    return readFiles(TappDir::dataFolder(appDir), others);
}

// Starts the program with a pipe on its stdout and waits for its first line.
pid_t startSaver(const fs::path &program, const fs::path &appDir, bool once)
{
    int out[2];
    if (::pipe(out) != 0)
        throw std::runtime_error("pipe failed");
    pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(out[1], STDOUT_FILENO);
        ::execl(program.c_str(), program.c_str(), appDir.c_str(), once ? "--once" : nullptr, nullptr);
        ::_exit(127);
    }
    ::close(out[1]);
    for (char c = 0; ::read(out[0], &c, 1) == 1 && c != '\n';) {
    }
    ::close(out[0]);
    return pid;
}

std::chrono::microseconds oneSaveTakes(const fs::path &appDir)
{
    RecordingMessageSink sink;
    TdataSet set(appDir, sink);
    FullDataSet::fill(set, 0);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 3; ++i)
        set.backup();
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start) / 3;
}
// The "File Error" text of each data file, in the order a save reports them.
std::vector<std::pair<std::string, std::string>> fileErrorTexts()
{
    std::vector<std::pair<std::string, std::string>> texts{
        {"mit.dat", "An error occured while backing up the master checkitem database"},
        {"inspection.asq", "An error occured while backing up the data for Physical Inspections"}};
    for (int t = 1; t <= TdataSet::UserTesterCount; ++t)
        texts.emplace_back("usertester" + std::to_string(t) + ".asq",
                           "An error occured while backing up the data for User Tester Sequence " + std::to_string(t));
    return texts;
}

} // namespace

Files savedFiles(int variant)
{
    TempDir scratch;
    fs::create_directories(scratch / "Data");
    RecordingMessageSink sink;
    TdataSet set(scratch.path(), sink);
    FullDataSet::fill(set, variant);
    set.backup();
    if (!sink.messages.empty())
        throw std::runtime_error("the reference save failed: " + sink.messages.front().text);
    int others = 0;
    return readFiles(scratch / "Data", others);
}

KilledFigures killSaves(const fs::path &program, int kills, unsigned seed)
{
    const Files variants[2] = {savedFiles(0), savedFiles(1)};
    TempDir appDir;
    const fs::path data = appDir / "Data";
    // The loop saves variant 0 first, so the first save changes every file.
    writeFiles(data, variants[1]);
    const auto spread = 3 * oneSaveTakes(appDir.path());
    writeFiles(data, variants[1]);

    std::mt19937 random(seed);
    KilledFigures figures;
    int others = 0, status = 0;
    for (; figures.kills < kills; ++figures.kills) {
        pid_t pid = startSaver(program, appDir.path(), false);
        // The kill moment is the point of the test, so this sleep waits for nothing.
        std::this_thread::sleep_for(std::chrono::microseconds(random() % std::uint64_t(spread.count() + 1)));
        ::kill(pid, SIGKILL);
        ::waitpid(pid, &status, 0);
        // The set is judged as the next program to load it sees it.
        const Files found = loadedFiles(appDir.path(), others);
        figures.leftoversAfterKill += others;
        bool seen[2] = {false, false};
        for (const auto &[name, bytes] : variants[0]) {
            ++figures.filesChecked;
            auto it = found.find(name);
            if (it == found.end() || (it->second != bytes && it->second != variants[1].at(name)))
                ++figures.torn;
            else
                seen[it->second == bytes] = true;
        }
        figures.killedBetweenFiles += seen[0] && seen[1];
    }
    ::waitpid(startSaver(program, appDir.path(), true), &status, 0);
    readFiles(data, figures.leftoversAtEnd);
    return figures;
}

RenameKillFigures killAtEveryRename(const std::vector<std::string> &command, const fs::path &appDir,
                                    const Files &before)
{
    const fs::path data = TappDir::dataFolder(appDir);
    auto startFromBefore = [&] {
        for (const std::string &name : TdataSet::fileNames())
            fs::remove(data / name);
        writeFiles(data, before);
    };
    startFromBefore();
    RenameKillFigures figures;
    const ProgramRun whole = ProgramRun::runTool(command.front(), {command.begin() + 1, command.end()}, appDir);
    if (whole.exitCode != 0)
        throw std::runtime_error("the command failed without a kill: " + whole.err);
    int others = 0;
    const Files after = readFiles(data, others);
    for (int rename = 1;; ++rename, ++figures.kills) {
        startFromBefore();
        // The leak checker stops the world with ptrace, which a traced program cannot.
        // clang-format off
        std::vector<std::string> traced{"-f", "-o", "/dev/null", "-E", "ASAN_OPTIONS=detect_leaks=0",
                                        "-e", "trace=rename,renameat,renameat2",
                                        "-e", "inject=rename,renameat,renameat2:signal=SIGKILL:when=" +
                                                  std::to_string(rename)};
        // clang-format on
        traced.insert(traced.end(), command.begin(), command.end());
        const ProgramRun run = ProgramRun::runTool("strace", traced, appDir);
        const Files found = loadedFiles(appDir, others);
        figures.leftovers += others;
        figures.mixed += found != before && found != after;
        if (run.exitCode == 0)
            return figures;
    }
}

StarvedFigures starveSaves(const std::vector<std::size_t> &limits)
{
    const Files before = savedFiles(0), after = savedFiles(1);
    StarvedFigures figures;
    for (std::size_t limit : limits) {
        TempDir appDir;
        writeFiles(appDir / "Data", before);
        RecordingMessageSink sink;
        TdataSet set(appDir.path(), sink);
        FullDataSet::fill(set, 1);
        // Past the limit a write fails with EFBIG, as on a full disk; ignored, SIGXFSZ does not end the process.
        struct sigaction ignore {
        }, old{};
        ignore.sa_handler = SIG_IGN;
        ::sigaction(SIGXFSZ, &ignore, &old);
        rlimit saved{};
        ::getrlimit(RLIMIT_FSIZE, &saved);
        const rlimit starved{limit, saved.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &starved);
        set.backup();
        ::setrlimit(RLIMIT_FSIZE, &saved);
        ::sigaction(SIGXFSZ, &old, nullptr);
        ++figures.saves;
        int others = 0;
        const Files found = readFiles(appDir / "Data", others);
        figures.leftovers += others;
        std::vector<Message> expected;
        for (const auto &[name, text] : fileErrorTexts()) {
            const bool fits = after.at(name).size() <= limit;
            if (!fits)
                expected.push_back({"File Error", text, MsgIcon::Stop, MsgButtons::Ok, MsgModality::Task});
            auto it = found.find(name);
            figures.changedByFailure += it == found.end() || it->second != (fits ? after : before).at(name);
        }
        figures.filesFailed += int(expected.size());
        figures.wrongMessages += sink.messages != expected;
    }
    return figures;
}
} // namespace SaveUnderFaults
