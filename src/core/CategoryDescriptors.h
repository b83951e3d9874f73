#pragma once
// data/catdes.dat: one "%c, %s\n" line per category letter.
#include <filesystem>
#include <map>
#include <string>

using TcategoryMap = std::map<char, std::string>;

class CategoryDescriptors {
public:
    // 0 ok, -1 cannot open. Lines that do not parse are skipped.
    static int load(const std::filesystem::path &path, TcategoryMap &map);
    // Only named letters 'A'..'Z' are written, their names cleaned as typed names are.
    // 0 ok, -1 cannot create.
    static int save(const TcategoryMap &map, const std::filesystem::path &path);
    // The descriptor of 'A'..'Z' or, when it is missing or empty, the letter itself;
    // "<empty>" for 0; "" otherwise.
    static std::string displayText(const TcategoryMap &map, char letter);

    static const char *loadErrorCaption() { return "ERROR"; }
    static const char *loadErrorText();
};
