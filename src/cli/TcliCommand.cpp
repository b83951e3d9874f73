#include "TcliCommand.h"
#include "TcliArguments.h"
#include <iostream>

std::optional<int> TcliCommand::parseArguments(const std::vector<std::string> &arguments, TcliArguments &args,
                                               const std::set<std::string> &flags, std::size_t positionalCount,
                                               const std::set<std::string> &valueOptions) const
{
    std::string why;
    if (!args.parse(arguments, flags, positionalCount, why, valueOptions)) {
        std::cerr << "kt930ctl " << name() << ": " << why << "\n" << usage();
        return 2;
    }
    if (args.help) {
        std::cout << usage();
        return 0;
    }
    if (needsDataFolder()) {
        std::string message;
        const TappDir::Seeding seeding = TappDir::seed(args.folders, message);
        if (!message.empty())
            std::cerr << "kt930ctl: " << message << "\n";
        if (seeding == TappDir::Seeding::Failed)
            return 1;
    }
    return std::nullopt;
}
