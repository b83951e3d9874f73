#include "TexportCsvCommand.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TdataSet.h"
#include <iostream>

std::string TexportCsvCommand::usage() const
{
    return "Usage: kt930ctl export-csv FILE [--appdir DIR]\n"
           "Writes all 1044 checkitem slots of DIR/Data/mit.dat to FILE, one \"category,op code,command\"\n"
           "line each, as the checkitem editor's export does.\n"
           "  --appdir DIR   application folder (default KT930PC_APPDIR, else the folder of kt930ctl)\n";
}

int TexportCsvCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    std::string why;
    if (!args.parse(arguments, {}, 1, why)) {
        std::cerr << "kt930ctl export-csv: " << why << "\n" << usage();
        return 2;
    }
    if (args.help) {
        std::cout << usage();
        return 0;
    }
    TcliMessageSink sink(&std::cerr);
    TdataSet data(args.appDir, sink);
    data.loadCheckitems();
    if (data.checkitems.exportText(args.positional[0]) != 0) {
        std::cerr << "kt930ctl export-csv: cannot create " << args.positional[0] << "\n";
        return 1;
    }
    std::cout << "Exported " << data.checkitems.size() << " checkitem slots to " << args.positional[0] << "\n";
    return 0;
}
