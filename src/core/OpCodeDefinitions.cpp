#include "OpCodeDefinitions.h"
#include "MessageSink.h"
#include "RegularFile.h"
#include "TextLineReader.h"
#include <algorithm>
#include <cctype>
#include <fstream>

namespace fs = std::filesystem;

namespace {
constexpr std::size_t DefinitionLineLimit = 1024;

// The first decimal number after the flag character, 1024 when there is none.
int listOrderOf(const std::string &flagLine)
{
    auto digit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    auto begin = flagLine.size() > 1 ? std::find_if(flagLine.begin() + 1, flagLine.end(), digit) : flagLine.end();
    if (begin == flagLine.end())
        return 1024;
    int value = 0;
    for (auto it = begin; it != flagLine.end() && digit(*it) && value < 100000; ++it)
        value = value * 10 + (*it - '0');
    return value;
}
}

std::vector<fs::path> OpCodeDefinitions::listFiles(const fs::path &dataFolder)
{
    std::vector<fs::path> files;
    std::error_code ec;
    for (fs::directory_iterator it(dataFolder, ec), end; !ec && it != end; it.increment(ec)) {
        if (it->path().extension() == ".in" && it->is_regular_file(ec))
            files.push_back(it->path());
    }
    // Sorted by file name, so the "first file wins" rule does not depend on the file system.
    std::sort(files.begin(), files.end(),
              [](const fs::path &a, const fs::path &b) { return a.filename() < b.filename(); });
    return files;
}

TinstStruct OpCodeDefinitions::readHeader(const fs::path &file)
{
    std::ifstream in;
    if (!openRegularFile(in, file))
        throw TopCodeFileCorrupt(file.string());
    TtextLineReader reader(in, DefinitionLineLimit);
    std::string nameLine, flagLine;
    if (!reader.next(nameLine) || nameLine.size() < 2 || !reader.next(flagLine))
        throw TopCodeFileCorrupt(file.string());
    TinstStruct definition;
    definition.name = nameLine;
    definition.opCode = nameLine[0];
    definition.yFlag = !flagLine.empty() && flagLine[0] == 'Y';
    definition.listOrder = listOrderOf(flagLine);
    return definition;
}

std::vector<std::string> OpCodeDefinitions::readLines(const fs::path &file)
{
    std::ifstream in;
    if (!openRegularFile(in, file))
        throw TopCodeFileCorrupt(file.string());
    TtextLineReader reader(in, DefinitionLineLimit);
    std::vector<std::string> lines;
    std::string line;
    while (reader.next(line))
        lines.push_back(line);
    return lines;
}

void OpCodeDefinitions::loadReadable(const fs::path &dataFolder, TopCodeTable &table, MessageSink &sink)
{
    try {
        load(dataFolder, table, sink);
    } catch (const TopCodeFileCorrupt &) {
        // Reported; the op codes read so far still name their checkitems.
    }
}

int OpCodeDefinitions::load(const fs::path &dataFolder, TopCodeTable &table, MessageSink &sink, Wording wording)
{
    table.clear();
    std::vector<fs::path> files = listFiles(dataFolder);
    if (files.empty()) {
        sink.error("ERROR!", noFilesText(wording));
        return -1;
    }
    for (const fs::path &file : files) {
        TinstStruct definition;
        try {
            definition = readHeader(file);
        } catch (const TopCodeFileCorrupt &) {
            sink.error("ERROR", corruptFileText(file.string()));
            throw;
        }
        table.emplace(definition.opCode, definition); // the first file keeps its letter
    }
    return 0;
}

std::string OpCodeDefinitions::noFilesText(Wording wording)
{
    const char *what = wording == Wording::InstructionList ? "Instruction List Files" : "Checkitem Database Files";
    return std::string("Warning!\n") + what
        + " Cannot Be Found Or Are Corrupt!\nPlease restart program.\nIf this problem persists, contact your software vendor.";
}

std::string OpCodeDefinitions::corruptFileText(const std::string &path)
{
    return "An unexpected error occured while processing " + path
        + ".\nThe file is corrupt.  Please contact your product's distributor immediately.";
}
