#include "CategoryDescriptors.h"
#include "AtomicFile.h"
#include "RegularFile.h"
#include "TextLineReader.h"
#include "TtypedText.h"
#include <fstream>

namespace fs = std::filesystem;

namespace {
constexpr std::size_t DescriptorLineLimit = 4095;

// "B, Electrical tests": a letter, optional blanks, a comma, blanks, the text.
bool parseLine(const std::string &line, char &letter, std::string &text)
{
    if (line.empty() || static_cast<unsigned char>(line[0]) <= ' ')
        return false;
    std::size_t pos = line.find_first_not_of(' ', 1);
    if (pos == std::string::npos || line[pos] != ',')
        return false;
    pos = line.find_first_not_of(' ', pos + 1);
    letter = line[0];
    text = pos == std::string::npos ? std::string() : line.substr(pos);
    return true;
}
}

int CategoryDescriptors::load(const fs::path &path, TcategoryMap &map)
{
    std::ifstream in;
    if (!openRegularFile(in, path))
        return -1;
    map.clear();
    TtextLineReader reader(in, DescriptorLineLimit);
    std::string line, text;
    char letter = 0;
    while (reader.next(line))
        if (parseLine(line, letter, text))
            map[letter] = text;
    return 0;
}

int CategoryDescriptors::save(const TcategoryMap &map, const fs::path &path)
{
    std::string bytes;
    for (const auto &[letter, name] : map) {
        // A line feed inside a name would start a line of its own, read back as another category.
        const std::string text = TtypedText::cleanName(name);
        // The category editor's look-ups leave empty entries, some under keys that
        // are no letter at all; neither names a category.
        if (letter < 'A' || letter > 'Z' || text.empty())
            continue;
        bytes.push_back(letter);
        bytes += ", " + text + "\n";
    }
    return writeFileAtomically(path, bytes) == AtomicWriteResult::Ok ? 0 : -1;
}

std::string CategoryDescriptors::displayText(const TcategoryMap &map, char letter)
{
    if (letter == 0)
        return "<empty>";
    if (letter < 'A' || letter > 'Z')
        return "";
    // An empty entry is an unused letter (the category editor leaves such entries behind).
    auto it = map.find(letter);
    return it != map.end() && !it->second.empty() ? it->second : std::string(1, letter);
}

const char *CategoryDescriptors::loadErrorText()
{
    return "There has been an error initializing the category descriptors\rThis will not affect the operation "
           "of the program, however all\rinstructions will be displayed without a category name.";
}
