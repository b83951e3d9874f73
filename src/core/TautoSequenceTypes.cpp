#include "TautoSequenceTypes.h"
#include "OpCodeDefinitions.h"
#include <charconv>

bool TautoSequenceTypes::parse(const std::vector<std::string> &lines, std::vector<TautoSequenceType> &types)
{
    types.clear();
    for (const std::string &line : lines) {
        const std::size_t first = line.find('\t');
        const std::size_t second = first == std::string::npos ? first : line.find('\t', first + 1);
        if (second == std::string::npos || line.find('\t', second + 1) != std::string::npos)
            return false;
        TautoSequenceType type{line.substr(0, first), line.substr(first + 1, second - first - 1), 0};
        const char *begin = line.data() + second + 1;
        const char *end = line.data() + line.size();
        auto result = std::from_chars(begin, end, type.count);
        // The command text holds the number in two digits: a count above 99 cannot be
        // chosen, and a huge one would fill the number list for minutes.
        if (result.ec != std::errc() || result.ptr != end || type.count < 0 || type.count > 99)
            return false;
        types.push_back(std::move(type));
    }
    return true;
}

bool TautoSequenceTypes::load(const std::filesystem::path &dataFolder, std::vector<TautoSequenceType> &types)
{
    types.clear();
    for (const std::filesystem::path &file : OpCodeDefinitions::listFiles(dataFolder)) {
        try {
            if (OpCodeDefinitions::readHeader(file).opCode != 'A')
                continue;
            std::vector<std::string> lines = OpCodeDefinitions::readLines(file);
            lines.erase(lines.begin(), lines.begin() + 2);
            return parse(lines, types);
        } catch (const TopCodeFileCorrupt &) {
            continue; // the other definition files are not ours to judge here
        }
    }
    return false;
}
