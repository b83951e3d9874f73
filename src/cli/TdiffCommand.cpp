#include "TdiffCommand.h"
#include "AppDir.h"
#include "OpCodeDefinitions.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TcliProgressSink.h"
#include "TdataSet.h"
#include "TdataSetComparison.h"
#include "TrecentFolders.h"
#include "TtextEncoding.h"
#include "TtransferCommand.h"
#include "TtransferMessageSink.h"
#include <QCoreApplication>
#include <algorithm>
#include <iostream>
#include <optional>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
// A data set with what names its checkitems: the op codes and category names of its folder.
struct Tloaded {
    explicit Tloaded(const fs::path &appDir) : data(appDir, messages) {}
    TcliMessageSink messages; // kept until the load is over, then printed under the folder's name
    TdataSet data;
    TopCodeTable opCodes;
    std::optional<TcategoryMap> categories;
    const TcategoryMap *names() const { return categories ? &*categories : nullptr; }
};

// Two sets' load messages would read alike: each set's come under its folder's name.
// False when the set did not load cleanly: what failed was replaced by defaults.
bool load(Tloaded &set)
{
    set.data.loadAll();
    OpCodeDefinitions::loadReadable(set.data.dataFolder(), set.opCodes, set.messages);
    if (TcategoryMap names; CategoryDescriptors::load(set.data.dataFile("catdes.dat"), names) == 0)
        set.categories = std::move(names);
    if (set.messages.messages().empty())
        return true;
    std::cerr << "kt930ctl diff: loading " << set.data.dataFolder().string() << ":\n";
    TcliMessageSink printer(&std::cerr);
    for (const Message &message : set.messages.messages())
        printer.show(message);
    return false;
}

// The application folder of folder: folder itself when its data folder holds a data
// file, or the folder above when folder is that data folder.
std::optional<fs::path> applicationFolderOf(const fs::path &folder)
{
    std::error_code ignored;
    for (const fs::path &candidate : {folder, folder.parent_path()}) {
        const fs::path data = TappDir::dataFolder(candidate);
        if (candidate != folder && !fs::equivalent(data, folder, ignored))
            continue;
        for (const std::string &name : TdataSet::fileNames())
            if (fs::is_regular_file(data / name, ignored))
                return candidate;
    }
    return std::nullopt;
}

std::string utf8(const std::string &text)
{
    return TtextEncoding::toUtf8(text);
}

void printText(const TdataSetComparison &comparison, std::ostream &out)
{
    for (const TdataSetDifference &difference : comparison.differences())
        out << utf8(difference.line()) << "\n";
    out << comparison.summary() << "\n";
}

void printJson(const TdataSetComparison &comparison, std::ostream &out)
{
    using Kind = TdataSetDifference::Kind;
    auto q = [](const std::string &text) { return TtextEncoding::jsonString(utf8(text)); };
    out << "{\n  \"differences\": [";
    const auto &differences = comparison.differences();
    for (std::size_t i = 0; i < differences.size(); ++i) {
        const TdataSetDifference &difference = differences[i];
        out << (i ? ",\n" : "\n") << "    {\"kind\": " << q(TdataSetDifference::kindName(difference.kind)) << ", ";
        if (difference.kind == Kind::Category)
            out << "\"letter\": " << q(std::string(1, char(difference.number)));
        else
            out << "\"number\": " << difference.number;
        out << ", \"place\": " << q(difference.place) << ", \"from\": " << q(difference.from)
            << ", \"to\": " << q(difference.to) << ", \"line\": " << q(difference.line()) << "}";
    }
    out << "\n  ],\n  \"counts\": {";
    for (std::size_t kind = 0; kind < TdataSetDifference::KindCount; ++kind)
        out << (kind ? ", " : "") << q(TdataSetDifference::groupName(Kind(kind))) << ": "
            << comparison.count(Kind(kind));
    out << "},\n  \"summary\": " << q(comparison.summary()) << "\n}\n";
}

// A set that did not load cleanly was compared with defaults in place of what failed:
// the differences are printed, but the answer is trouble, not "same" or "different".
int report(const TdataSetComparison &comparison, bool json, bool loadedCleanly)
{
    if (json)
        printJson(comparison, std::cout);
    else
        printText(comparison, std::cout);
    if (!loadedCleanly) {
        std::cerr << "kt930ctl diff: a data set did not load cleanly (see above); defaults stood in for what "
                     "failed\n";
        return TdiffCommand::Trouble;
    }
    return comparison.same() ? TdiffCommand::Same : TdiffCommand::Different;
}

bool choosesAnalyzer(const std::vector<std::string> &arguments)
{
    return std::any_of(arguments.begin(), arguments.end(), [](const std::string &argument) {
        return argument == "--usb" || argument == "--ethernet" || argument == "--serial";
    });
}

// Whether anything but options and their values is given, or help is asked for.
bool namesFolderOrAsksForHelp(const std::vector<std::string> &arguments)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--help" || arguments[i] == "-h" || !arguments[i].starts_with('-'))
            return true;
        if (arguments[i] == "--appdir")
            ++i;
    }
    return false;
}
} // namespace

std::string TdiffCommand::summary() const
{
    return "compare the data set with another folder's or with the analyzer's";
}

std::string TdiffCommand::usage() const
{
    return "Usage: kt930ctl diff (OTHER_FOLDER | --usb | --ethernet A.B.C.D | --serial N) [--json] [--appdir DIR]\n"
           "Compares the data set of DIR/Data with that of another application folder (or its Data\n"
           "folder), or with what the analyzer holds, read as a download reads it but into memory:\n"
           "no file changes. Prints one line per difference, this folder's side first, e.g.\n"
           "  checkitem 39: \"L - Meas. w Limits\" EB\xC2\xBB"
           "0\xC2\xBB"
           "0.1\xC2\xBB"
           "0\xC2\xBB"
           "5 -> \"K - OK Prompt\" Switch the analyzer OFF\n"
           "  inspection 4 title 1: \"EARTH BOND\" -> \"(UNUSED)\"\n"
           "  tester 2 sequence 5 items: 12 15 16 -> 12 16\n"
           "  category B: \"Cord sets\" -> (none)      (folders only: the analyzer holds no names)\n"
           "then a summary line. Checkitems are named by the op codes of DIR/Data. Load messages go to\n"
           "stderr.\n"
           "  --json           print the differences, the count of each kind and the summary as JSON\n"
           "  --usb, --ethernet ADDR, --serial N   the analyzer, as kt930ctl download --help says\n"
           "  --appdir DIR     application folder (default: as kt930ctl where says)\n"
           "Exit code 0 when the data sets are the same, 1 when they differ, 2 on trouble (a bad\n"
           "command line, a folder without a data set, a data set that did not load cleanly, a read from\n"
           "the analyzer that failed).\n";
}

int TdiffCommand::run(const std::vector<std::string> &arguments)
{
    const bool analyzer = choosesAnalyzer(arguments);
    if (!analyzer && !namesFolderOrAsksForHelp(arguments)) {
        std::cerr << "kt930ctl diff: name another folder, or the analyzer with --usb, --ethernet A.B.C.D or "
                     "--serial N\n"
                  << usage();
        return Trouble;
    }
    TcliArguments args;
    if (auto exitCode =
            parseArguments(arguments, args, {"--usb", "--json"}, analyzer ? 0 : 1, {"--ethernet", "--serial"}))
        return *exitCode == 0 ? 0 : Trouble;
    const bool json = args.has("--json");

    if (!analyzer) {
        // "other/Data/" names the Data folder as "other/Data" does.
        const fs::path other = TrecentFolders::normal(args.positional.front());
        const std::optional<fs::path> otherApp = applicationFolderOf(other);
        if (!otherApp) {
            std::cerr << "kt930ctl diff: " << other.string()
                      << " holds no data set: neither it nor its Data folder has mit.dat, inspection.asq, "
                         "usertester1-5.asq or testProc.asq\n";
            return Trouble;
        }
        Tloaded mine(args.appDir), theirs(*otherApp);
        const bool mineClean = load(mine);
        const bool theirsClean = load(theirs);
        return report(TdataSetComparison({mine.data, mine.names()}, {theirs.data, theirs.names()}, mine.opCodes), json,
                      mineClean && theirsClean);
    }

    TtransferJob::Parameters parameters;
    std::string why;
    if (!TtransferCommand::connectionFrom(args, parameters, why)) {
        std::cerr << "kt930ctl diff: " << why << "\n" << usage();
        return Trouble;
    }
    const auto app = TtransferCommand::transferApplication(args);
    TcliProgressSink progress(std::cerr, isatty(STDERR_FILENO));
    TtransferMessageSink messages(progress);
    Tloaded mine(args.appDir);
    const bool clean = load(mine);
    // Never saved: the analyzer's content goes into this set alone.
    TdataSet analyzerSet(args.appDir, messages);
    parameters.kind = TtransferJob::Kind::Read;
    parameters.data = &analyzerSet;
    parameters.context = &analyzerSet;
    TtransferJob job(parameters, messages);
    if (TtransferCommand::runJob(name(), job, progress, parameters.method) != TtransferJob::Outcome::Completed) {
        std::cerr << "kt930ctl diff: the analyzer's data set could not be read; nothing was compared\n";
        return Trouble;
    }
    return report(TdataSetComparison({mine.data, nullptr}, {analyzerSet, nullptr}, mine.opCodes), json, clean);
}
