#pragma once
// Runs a program of the application folder to its end, capturing stdout and stderr.
#include <filesystem>
#include <string>
#include <vector>

struct ProgramRun {
    int exitCode = -1; // -1 when it did not exit normally
    std::string out;
    std::string err;

    // program is a file name in the build's application folder; the captures go to scratch.
    static ProgramRun run(const std::string &program, std::vector<std::string> arguments,
                          const std::filesystem::path &scratch);
    // A system tool (nm, pdftotext) found on PATH.
    static ProgramRun runTool(const std::string &tool, std::vector<std::string> arguments,
                              const std::filesystem::path &scratch);

private:
    static ProgramRun spawn(std::string path, bool searchPath, std::vector<std::string> arguments,
                            const std::filesystem::path &scratch);
};
