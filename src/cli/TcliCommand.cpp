#include "TcliCommand.h"
#include "TcliArguments.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

namespace fs = std::filesystem;

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
    std::error_code ignored;
    if (dataAccess() == DataAccess::Write) {
        std::string message;
        const TappDir::Seeding seeding = TappDir::seed(args.folders, message);
        if (!message.empty())
            std::cerr << "kt930ctl: " << message << "\n";
        if (seeding == TappDir::Seeding::Failed)
            return 1;
    } else if (dataAccess() == DataAccess::Read && !args.folders.defaults.empty()
               && !fs::is_directory(TappDir::dataFolder(args.appDir), ignored)) {
        std::cerr << "kt930ctl: there is no data folder " << TappDir::dataFolder(args.appDir).string()
                  << " yet: reading the shipped defaults in " << args.folders.defaults.string() << "\n";
        args.appDir = args.folders.defaults.parent_path();
    }
    if (dataAccess() != DataAccess::None) {
        // An application folder that exists but cannot be read would otherwise surface
        // as a raw file system error somewhere in the load.
        const int fd = ::open(args.appDir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0 && errno != ENOENT) {
            std::cerr << "kt930ctl " << name() << ": the application folder " << args.appDir.string()
                      << " cannot be read (" << std::strerror(errno) << ")\n";
            return 1;
        }
        if (fd >= 0)
            ::close(fd);
    }
    return std::nullopt;
}
