#include "TlistingCommand.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TdataSet.h"
#include "Tfilter.h"
#include "TinstGridText.h"
#include "TinstListingPrinter.h"
#include "TpdfOutput.h"
#include "TtextEncoding.h"
#include <iostream>
#include <optional>

namespace {
QStringList decoded(const std::array<std::string, 4> &cells)
{
    QStringList texts;
    for (const std::string &cell : cells)
        texts.append(QString::fromStdString(TtextEncoding::toUtf8(cell)));
    return texts;
}

// The editor's grid as it first shows the database: filter reset, number order.
std::optional<QList<QStringList>> gridRows(TdataSet &data, const TcategoryMap &categories)
{
    Tfilter filter;
    filter.reset();
    filter.checklistMode = false;
    filter.setSort(1);
    std::vector<std::uint32_t> shown;
    filter.apply(data.checkitems.slots(), shown, categories);

    QList<QStringList> rows{decoded(TinstGridText::header())};
    for (std::uint32_t index : shown) {
        try {
            rows.append(decoded(TinstGridText::row(data.checkitems, index, categories)));
        } catch (const std::runtime_error &e) {
            std::cerr << "kt930ctl listing: checkitem " << index + 1 << ": " << e.what() << "\n";
            return std::nullopt;
        }
    }
    if (shown.empty())
        rows.append(QStringList(TinstGridText::header().size(), QString()));
    return rows;
}
}

std::string TlistingCommand::usage() const
{
    return "Usage: kt930ctl listing --pdf FILE [--appdir DIR]\n"
           "Prints the checkitem listing of DIR/Data/mit.dat (the first 250 slots, in number order,\n"
           "as the checkitem editor first shows them) to the PDF file FILE. Needs no display.\n"
           "  --pdf FILE     the PDF file to write\n"
           "  --appdir DIR   application folder (default: as kt930ctl where says)\n";
}

int TlistingCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode = parseArguments(arguments, args, {}, 0, {"--pdf"}))
        return *exitCode;
    if (!args.has("--pdf")) {
        std::cerr << "kt930ctl listing: --pdf FILE is required\n" << usage();
        return 2;
    }
    const std::string pdf = args.options["--pdf"];
    if (TpdfOutput::refused("kt930ctl listing: ", pdf))
        return 1;

    TcliMessageSink sink(&std::cerr);
    TdataSet data(args.appDir, sink);
    data.loadCheckitems();
    if (!sink.messages().empty())
        return 1; // no table to list
    TcategoryMap categories;
    if (!TpdfOutput::loadNames(data, sink, categories))
        return 1;

    auto rows = gridRows(data, categories);
    if (!rows)
        return 1;

    const auto application = TpdfOutput::application();
    const auto printer = TpdfOutput::printer(pdf);
    if (!TinstListingPrinter::print(*printer, *rows)) {
        std::cerr << "kt930ctl listing: cannot write " << pdf << "\n";
        return 1;
    }
    std::cout << "Printed " << rows->size() - 1 << " rows to " << pdf << "\n";
    return 0;
}
