#include "TexportCsvCommand.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TdataSet.h"
#include <iostream>

std::string TexportCsvCommand::usage() const
{
    return "Usage: kt930ctl export-csv FILE [--all] [--appdir DIR]\n"
           "Writes the checkitems of DIR/Data/mit.dat to FILE, one \"category,op code,command\" line\n"
           "each, in slot order. Free slots are left out unless --all is given.\n"
           "  --all          write all 1044 slots, free ones included, as the checkitem editor's export does\n"
           "  --appdir DIR   application folder (default: as kt930ctl where says)\n";
}

int TexportCsvCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode = parseArguments(arguments, args, {"--all"}, 1))
        return *exitCode;
    TcliMessageSink sink(&std::cerr);
    TdataSet data(args.appDir, sink);
    data.loadCheckitems();
    if (!sink.messages().empty())
        return 1; // nothing to export: the table could not be read
    std::vector<TInstr> records;
    for (const TInstr &record : data.checkitems.slots())
        if (args.has("--all") || !record.isFree())
            records.push_back(record);
    // FILE may be a pipe or the terminal (/dev/stdout), which get the lines as they are.
    if (TInstrDatabase::exportText(records, args.positional[0], InPlaceWrites::Allowed) != 0) {
        std::cerr << "kt930ctl export-csv: cannot create " << args.positional[0] << "\n";
        return 1;
    }
    std::cout << "Exported " << records.size() << " checkitems to " << args.positional[0] << "\n";
    return 0;
}
