#include "TimportCsvCommand.h"
#include "OpCodeDefinitions.h"
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

std::string lines(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " line" : " lines");
}

// "; skipped 3 lines: 1 that is not category,op code,command, 2 with an op code ...".
std::string skippedText(const TcsvImportReport &report)
{
    constexpr std::size_t NamedAtMost = 5;
    const std::size_t unknown = report.unknownOpCodes.size();
    if (report.malformed + unknown == 0)
        return "";
    std::string malformed = std::string(report.malformed == 1 ? " that is" : " that are")
        + " not category,op code,command";
    std::string named;
    for (std::size_t i = 0; i < unknown && i < NamedAtMost; ++i)
        named += std::string(i ? ", " : "") + "line " + std::to_string(report.unknownOpCodes[i].line) + " ("
            + report.unknownOpCodes[i].opCode + ")";
    if (unknown > NamedAtMost)
        named += " and " + std::to_string(unknown - NamedAtMost) + " more";
    const std::string unknownText = " with an op code that no definition file knows: " + named;
    if (unknown == 0)
        return "; skipped " + lines(report.malformed) + malformed;
    if (report.malformed == 0)
        return "; skipped " + lines(unknown) + unknownText;
    return "; skipped " + lines(report.malformed + unknown) + ": " + std::to_string(report.malformed) + malformed
        + ", " + std::to_string(unknown) + unknownText;
}
}

std::string TimportCsvCommand::usage() const
{
    return "Usage: kt930ctl import-csv FILE [--appdir DIR]\n"
           "Adds every \"category,op code,command\" line of FILE to the free slots of the checkitem\n"
           "table and saves DIR/Data/mit.dat; existing checkitems are kept. Lines without two\n"
           "commas, and lines whose op code no DIR/Data/*.in file defines, are skipped and counted; when\n"
           "nothing could be imported from a file that has lines, the exit code is 1. When the table\n"
           "fills up, what fitted is saved and the exit code is 1.\n"
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
    // A table that exists (or may exist: its folder cannot be searched) but cannot be
    // read is not replaced by an import into empty slots.
    std::error_code unknown;
    if (!sink.messages().empty() && (std::filesystem::exists(data.dataFile("mit.dat"), unknown) || unknown))
        return 1;
    const std::size_t before = usedSlots(data.checkitems);
    // A checkitem whose op code the analyzer does not know must not get into the table.
    TopCodeTable known;
    try {
        if (OpCodeDefinitions::load(data.dataFolder(), known, sink) != 0)
            return 1;
    } catch (const TopCodeFileCorrupt &) {
        return 1; // reported
    }

    bool overflow = false;
    int result = 0;
    TcsvImportReport report;
    try {
        result = data.checkitems.importText(args.positional[0], &known, &report);
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
    const std::size_t imported = usedSlots(data.checkitems) - before;
    std::cout << "Imported " << imported << " checkitems into " << data.dataFile("mit.dat").string()
              << skippedText(report) << "\n";
    return overflow || (imported == 0 && report.lines > 0) ? 1 : 0;
}
