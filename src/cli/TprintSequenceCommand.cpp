#include "TprintSequenceCommand.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TdataSet.h"
#include "TpdfOutput.h"
#include "TsequencePrinter.h"
#include "TsequenceReport.h"
#include <ctime>
#include <iostream>

namespace {
const char *const Prefix = "kt930ctl print-sequence: ";

std::size_t oneBased(const std::string &text, std::size_t count)
{
    return TcliArguments::oneBased(text, count);
}

struct Choice {
    const Tautosequence *sequence;
    std::string name; // for messages: "inspection 3", "tester 2 sequence 5"
    bool fromLoadedFile;
};
} // namespace

std::string TprintSequenceCommand::usage() const
{
    return "Usage: kt930ctl print-sequence (--inspection K | --tester I --sequence J | --all) --pdf FILE [--appdir "
           "DIR]\n"
           "Prints autosequences of DIR/Data as the sequence editor prints them, one page each, to\n"
           "the PDF file FILE. Needs no display. Numbers count from 1, as the frame shows them.\n"
           "Load messages go to stderr; only sequences whose own file did not load are refused.\n"
           "  --inspection K   physical inspection K\n"
           "  --tester I       user tester I (1 to 5), with --sequence J (1 to 12)\n"
           "  --all            every autosequence in use: the inspections, then the testers'\n"
           "  --pdf FILE       the PDF file to write\n"
           "  --appdir DIR     application folder (default: as kt930ctl where says)\n";
}

int TprintSequenceCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode =
            parseArguments(arguments, args, {"--all"}, 0, {"--pdf", "--inspection", "--tester", "--sequence"}))
        return *exitCode;
    const int picks = int(args.has("--all")) + int(args.has("--inspection")) + int(args.has("--tester"));
    if (!args.has("--pdf") || picks != 1 || args.has("--tester") != args.has("--sequence")) {
        std::cerr << Prefix << "give --pdf FILE and one of --inspection K, --tester I --sequence J, --all\n" << usage();
        return 2;
    }
    const std::string pdf = args.options["--pdf"];
    if (TpdfOutput::refused(Prefix, pdf))
        return 1;

    // Load messages go to stderr; a file that failed to load stops only its own sequences.
    TcliMessageSink sink(&std::cerr);
    TdataSet data(args.appDir, sink);
    data.loadCheckitems();
    data.loadInspections();
    data.loadUserTesters();
    TcategoryMap categories;
    if (!TpdfOutput::loadNames(data, sink, categories))
        return 1;

    std::vector<Choice> chosen;
    if (args.has("--all")) {
        if (data.loadedCleanly(TdataSet::Inspections))
            for (const Tautosequence &sequence : data.inspections)
                if (!sequence.isUnused())
                    chosen.push_back({&sequence, "", true});
        for (std::size_t i = 0; i < data.userTesters.size(); ++i)
            if (data.loadedCleanly(TdataSet::UserTesters, int(i)))
                for (const Tautosequence &sequence : data.userTesters[i].sequences)
                    if (!sequence.isUnused())
                        chosen.push_back({&sequence, "", true});
        if (chosen.empty()) {
            std::cerr << Prefix << "no autosequence is in use; nothing printed\n";
            return 1;
        }
    } else if (args.has("--inspection")) {
        const std::string &text = args.options["--inspection"];
        const std::size_t k = oneBased(text, data.inspections.size());
        if (k == 0) {
            std::cerr << Prefix << "--inspection " << text << ": the data set has inspections 1 to "
                      << data.inspections.size() << "\n";
            return 2;
        }
        chosen.push_back({&data.inspections[k - 1], "inspection " + text, data.loadedCleanly(TdataSet::Inspections)});
    } else {
        const std::string &testerText = args.options["--tester"];
        const std::string &sequenceText = args.options["--sequence"];
        const std::size_t i = oneBased(testerText, data.userTesters.size());
        if (i == 0) {
            std::cerr << Prefix << "--tester " << testerText << ": the data set has user testers 1 to "
                      << data.userTesters.size() << "\n";
            return 2;
        }
        const std::vector<Tautosequence> &sequences = data.userTesters[i - 1].sequences;
        const std::size_t j = oneBased(sequenceText, sequences.size());
        if (j == 0) {
            std::cerr << Prefix << "--sequence " << sequenceText << ": user tester " << testerText
                      << " has sequences 1 to " << sequences.size() << "\n";
            return 2;
        }
        chosen.push_back({&sequences[j - 1], "user tester " + testerText + " sequence " + sequenceText,
                          data.loadedCleanly(TdataSet::UserTesters, int(i - 1))});
    }
    if (chosen.size() == 1 && !chosen.front().fromLoadedFile) {
        std::cerr << Prefix << chosen.front().name << ": its file did not load (see above); nothing printed\n";
        return 1;
    }
    if (chosen.size() == 1 && chosen.front().sequence->isUnused()) {
        // The sequence editor's words.
        std::cerr << Prefix << chosen.front().name << ": Autosequence is unused. Print operation not initiated.\n";
        return 1;
    }

    const std::time_t now = std::time(nullptr);
    std::vector<TsequenceReport> reports;
    reports.reserve(chosen.size());
    for (const Choice &choice : chosen)
        reports.push_back(TsequenceReport::make(*choice.sequence, data.checkitems, categories, now));

    const auto application = TpdfOutput::application();
    const auto printer = TpdfOutput::printer(pdf);
    if (!TsequencePrinter::print(*printer, reports)) {
        std::cerr << Prefix << "cannot write " << pdf << "\n";
        return 1;
    }
    std::cout << "Printed " << reports.size() << (reports.size() == 1 ? " autosequence" : " autosequences") << " to "
              << pdf << "\n";
    return 0;
}
