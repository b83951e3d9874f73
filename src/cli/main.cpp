// kt930ctl: the data set and the analyzer from a terminal or a script.
#include "TdiffCommand.h"
#include "TexportCsvCommand.h"
#ifdef KT930_HAS_PRINT
#include "TlistingCommand.h"
#include "TprintChecklistCommand.h"
#include "TprintSequenceCommand.h"
#endif
#include "TimportCsvCommand.h"
#include "TrestoreCommand.h"
#include "TrestorePointsCommand.h"
#include "TshowCommand.h"
#include "TtransferCommand.h"
#include "TwhereCommand.h"
#include <algorithm>
#include <iostream>
#include <memory>

namespace {
std::vector<std::unique_ptr<TcliCommand>> makeCommands()
{
    std::vector<std::unique_ptr<TcliCommand>> commands;
    commands.push_back(std::make_unique<TshowCommand>());
    commands.push_back(std::make_unique<TexportCsvCommand>());
    commands.push_back(std::make_unique<TimportCsvCommand>());
#ifdef KT930_HAS_PRINT
    commands.push_back(std::make_unique<TlistingCommand>());
    commands.push_back(std::make_unique<TprintSequenceCommand>());
    commands.push_back(std::make_unique<TprintChecklistCommand>());
#endif
    commands.push_back(std::make_unique<TtransferCommand>(TtransferCommand::Kind::Download));
    commands.push_back(std::make_unique<TtransferCommand>(TtransferCommand::Kind::Upload));
    commands.push_back(std::make_unique<TtransferCommand>(TtransferCommand::Kind::Sync));
    commands.push_back(std::make_unique<TdiffCommand>());
    commands.push_back(std::make_unique<TrestorePointsCommand>());
    commands.push_back(std::make_unique<TrestoreCommand>());
    commands.push_back(std::make_unique<TwhereCommand>());
    return commands;
}

std::string overview(const std::vector<std::unique_ptr<TcliCommand>> &commands)
{
    std::string text = "Usage: kt930ctl <command> [options]\n"
                       "Works on the data set of an application folder (its Data/ folder).\n\nCommands:\n";
    // A fixed column, so a new command's name does not move the others'; a longer name gets two blanks.
    constexpr std::size_t NameColumn = 16;
    for (const auto &command : commands) {
        const std::string name = command->name();
        text += "  " + name +
                std::string(std::max<std::size_t>(NameColumn - std::min(name.size(), NameColumn), 2), ' ') +
                command->summary() + "\n";
    }
    text += "\nEvery command takes --appdir DIR (default: as kt930ctl where says) and --help.\n"
            "Exit codes: 0 success, 1 failure, 2 bad command line.\n";
    return text;
}
} // namespace

int main(int argc, char **argv)
{
    auto commands = makeCommands();
    const std::string first = argc > 1 ? argv[1] : "";
    if (first.empty() || first == "--help" || first == "-h" || first == "help") {
        (first.empty() ? std::cerr : std::cout) << overview(commands);
        return first.empty() ? 2 : 0;
    }
    for (const auto &command : commands) {
        if (command->name() != first)
            continue;
        try {
            return command->run(std::vector<std::string>(argv + 2, argv + argc));
        } catch (const std::exception &e) {
            std::cerr << "kt930ctl " << first << ": " << e.what() << "\n";
            return 1;
        }
    }
    std::cerr << "kt930ctl: unknown command \"" << first << "\"\n" << overview(commands);
    return 2;
}
