#pragma once
// Reading the Data/*.in checkitem definition files.
#include "TinstStruct.h"
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

class MessageSink;

// A definition file that cannot be read or whose header is corrupt.
struct TopCodeFileCorrupt : std::runtime_error {
    explicit TopCodeFileCorrupt(const std::string &path)
        : std::runtime_error("corrupt definition file " + path), path(path) {}
    std::string path;
};

class OpCodeDefinitions {
public:
    // The *.in files of the data folder in directory order (sorted by name here).
    static std::vector<std::filesystem::path> listFiles(const std::filesystem::path &dataFolder);
    // Reads the two header lines; throws TopCodeFileCorrupt.
    static TinstStruct readHeader(const std::filesystem::path &file);
    // Every line of a file, line ends stripped (\n or \r\n), each cut to 1024 characters.
    static std::vector<std::string> readLines(const std::filesystem::path &file);

    enum class Wording { CheckitemDatabase, InstructionList };
    // Loads every file into table (first file wins a letter). Reports "ERROR!" when
    // there is no file (returns -1) and "ERROR" for a corrupt file (then throws
    // TopCodeFileCorrupt after the message). Returns 0 on success.
    static int load(const std::filesystem::path &dataFolder, TopCodeTable &table, MessageSink &sink,
                    Wording wording = Wording::CheckitemDatabase);

    // load() for callers that only name things: a corrupt file is reported and the op
    // codes read before it are kept.
    static void loadReadable(const std::filesystem::path &dataFolder, TopCodeTable &table, MessageSink &sink);

    static std::string noFilesText(Wording wording);
    static std::string corruptFileText(const std::string &path);
};
