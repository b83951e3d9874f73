#include "TprintChecklistCommand.h"
#include "TchecklistPrinter.h"
#include "TchecklistReport.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TdataSet.h"
#include "TpdfOutput.h"
#include <ctime>
#include <iostream>

namespace {
const char *const Prefix = "kt930ctl print-checklist: ";
}

std::string TprintChecklistCommand::usage() const
{
    return "Usage: kt930ctl print-checklist (--checklist N | --all) --pdf FILE [--appdir DIR]\n"
           "Prints checklists of DIR/Data as the checklist editor prints them, one page each, to\n"
           "the PDF file FILE. Needs no display. Steps that run an autosequence name it.\n"
           "  --checklist N    checklist N, counted from 1 as the frame shows them\n"
           "  --all            every checklist in use\n"
           "  --pdf FILE       the PDF file to write\n"
           "  --appdir DIR     application folder (default: as kt930ctl where says)\n";
}

int TprintChecklistCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode = parseArguments(arguments, args, {"--all"}, 0, {"--pdf", "--checklist"}))
        return *exitCode;
    if (!args.has("--pdf") || args.has("--all") == args.has("--checklist")) {
        std::cerr << Prefix << "give --pdf FILE and one of --checklist N, --all\n" << usage();
        return 2;
    }
    const std::string pdf = args.options["--pdf"];
    if (TpdfOutput::refused(Prefix, pdf))
        return 1;

    // Load messages go to stderr; steps that run an autosequence need the others too.
    TcliMessageSink messages(&std::cerr);
    TdataSet data(args.appDir, messages);
    data.loadAll();
    TcategoryMap categories;
    if (!TpdfOutput::loadNames(data, messages, categories))
        return 1;
    if (!data.loadedCleanly(TdataSet::Checklists)) {
        std::cerr << Prefix << "testProc.asq did not load (see above); nothing printed\n";
        return 1;
    }

    std::vector<const TTestProc *> chosen;
    if (args.has("--all")) {
        for (const TTestProc &checklist : data.checklists.items)
            if (!checklist.isUnused())
                chosen.push_back(&checklist);
        if (chosen.empty()) {
            std::cerr << Prefix << "no checklist is in use; nothing printed\n";
            return 1;
        }
    } else {
        const std::string &text = args.options["--checklist"];
        const std::size_t n = TcliArguments::oneBased(text, data.checklists.size());
        if (n == 0) {
            std::cerr << Prefix << "--checklist " << text << ": the data set has checklists 1 to "
                      << data.checklists.size() << "\n";
            return 2;
        }
        if (data.checklists.items[n - 1].isUnused()) {
            std::cerr << Prefix << "checklist " << text << " is unused; nothing printed\n";
            return 1;
        }
        chosen.push_back(&data.checklists.items[n - 1]);
    }

    const std::time_t now = std::time(nullptr);
    std::vector<TchecklistReport> reports;
    reports.reserve(chosen.size());
    for (const TTestProc *checklist : chosen)
        reports.push_back(
            TchecklistReport::make(*checklist, data.checkitems, categories, data.inspections, data.userTesters, now));
    const auto application = TpdfOutput::application();
    const auto printer = TpdfOutput::printer(pdf);
    if (!TchecklistPrinter::print(*printer, reports)) {
        std::cerr << Prefix << "cannot write " << pdf << "\n";
        return 1;
    }
    std::cout << "Printed " << reports.size() << (reports.size() == 1 ? " checklist" : " checklists") << " to " << pdf
              << "\n";
    return 0;
}
