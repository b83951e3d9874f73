#include "TimportCsvCommand.h"
#include "TcliArguments.h"
#include "TcliMessageSink.h"
#include "TdataFolderLock.h"
#include "TdataSet.h"
#include <iostream>

namespace {
std::size_t usedSlots(const TInstrDatabase &db)
{
    std::size_t used = 0;
    for (const TInstr &record : db.slots())
        used += record.isFree() ? 0 : 1;
    return used;
}
}

std::string TimportCsvCommand::usage() const
{
    return "Usage: kt930ctl import-csv FILE [--appdir DIR]\n"
           "Adds every \"category,op code,command\" line of FILE to the free slots of the checkitem\n"
           "table and saves DIR/Data/mit.dat; existing checkitems are kept. Lines without two\n"
           "commas are skipped. When the table fills up, what fitted is saved and the exit code is 1.\n"
           "  --appdir DIR   application folder (default: as kt930ctl where says)\n";
}

std::string TimportCsvCommand::importErrorText(int code)
{
    return "An error occurred while importing the checkitems.\nAn error code of " + std::to_string(code)
        + " was returned - " + (code == -1 ? "File I/O Error" : "Unhandled Exception") + ".";
}

const char *TimportCsvCommand::overflowText()
{
    return "WARNING!\n\nNot all checkitems could be imported because there\nwas insufficient space in the "
           "checkitem database to\ninsert all of the checkitems from the specified file.";
}

int TimportCsvCommand::run(const std::vector<std::string> &arguments)
{
    TcliArguments args;
    if (auto exitCode = parseArguments(arguments, args, {}, 1))
        return *exitCode;
    TcliMessageSink sink(&std::cerr);
    TdataSet data(args.appDir, sink);
    // Held from the load to the save, so no other writer's change falls in between.
    TdataFolderLock lock(data.dataFolder());
    if (!lock.locked()) {
        std::cerr << "kt930ctl import-csv: " << lock.failure() << "\n";
        return 1;
    }
    data.loadCheckitems();
    // A table that exists but cannot be read is not replaced by an import into empty slots.
    if (!sink.messages().empty() && std::filesystem::exists(data.dataFile("mit.dat")))
        return 1;
    const std::size_t before = usedSlots(data.checkitems);

    bool overflow = false;
    int result = 0;
    try {
        result = data.checkitems.importText(args.positional[0]);
    } catch (const TinstListOverflowException &) {
        overflow = true;
    }
    if (result != 0) {
        sink.error("ERROR", importErrorText(result));
        return 1;
    }
    if (overflow)
        sink.warning("OVERFLOW", overflowText());

    if (!data.saveCheckitems(TsaveAction::Import))
        return 1;
    std::cout << "Imported " << usedSlots(data.checkitems) - before << " checkitems into "
              << data.dataFile("mit.dat").string() << "\n";
    return overflow ? 1 : 0;
}
