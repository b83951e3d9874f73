// kt930sim: a simulated KT930 Plus analyzer for tests, demos and training.
#include "TsimMemory.h"
#include "TsimOptions.h"
#include "TsimServer.h"
#include "TstopSignal.h"
#include <iostream>

int main(int argc, char **argv)
{
    TsimOptions options;
    std::string why;
    if (!options.parse(argc, argv, why)) {
        std::cerr << "kt930sim: " << why << "\n" << "Try kt930sim --help.\n";
        return 2;
    }
    if (options.help) {
        std::cout << TsimOptions::usage();
        return 0;
    }
    TstopSignal::install();
    std::string message;
    if (TappDir::seed(options.folders, message) == TappDir::Seeding::Failed) {
        std::cerr << "kt930sim: " << message << "\n";
        return 1;
    }
    if (!message.empty())
        std::cerr << "kt930sim: " << message << "\n";

    TsimMemory memory;
    std::error_code ec;
    if (!options.memoryFile.empty() && std::filesystem::exists(options.memoryFile, ec)) {
        if (!memory.load(options.memoryFile, why)) {
            std::cerr << "kt930sim: " << why << "\n";
            return 1;
        }
        std::cerr << "kt930sim: memory from " << options.memoryFile.string() << "\n";
    } else {
        memory.fillFromAppDir(options.appDir);
        std::cerr << "kt930sim: memory from the data set in " << options.appDir.string() << "\n";
        if (!options.memoryFile.empty() && !memory.save(options.memoryFile)) {
            std::cerr << "kt930sim: cannot write " << options.memoryFile.string() << "\n";
            return 1;
        }
    }

    TsimServer server(options, memory);
    if (!server.start(why)) {
        std::cerr << "kt930sim: " << why << "\n";
        return 1;
    }
    server.run();
    return 0;
}
