#include "TlistTexts.h"

std::string TlistTexts::romanNumeral(int number)
{
    static const char *const tens[] = {"", "x", "xx", "xxx"};
    static const char *const ones[] = {"", "i", "ii", "iii", "iv", "v", "vi", "vii", "viii", "ix"};
    if (number < 1 || number > 38)
        return {};
    return std::string(tens[number / 10]) + ones[number % 10];
}

std::string TlistTexts::trimmed(const std::string &text)
{
    const auto isSpace = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    std::size_t first = 0, last = text.size();
    while (first < last && isSpace(text[first]))
        ++first;
    while (last > first && isSpace(text[last - 1]))
        --last;
    return text.substr(first, last - first);
}

std::string TlistTexts::inspectionRowText(const Tautosequence &sequence)
{
    if (sequence.isUnused())
        return "<unused>";
    return trimmed(Tautosequence::titleText(sequence.title1)) + " - "
        + trimmed(Tautosequence::titleText(sequence.title2));
}

std::string TlistTexts::testerRootText(int index, const std::string &name)
{
    return romanNumeral(index + 1) + ". " + name;
}

std::string TlistTexts::sequenceChildText(int j, const Tautosequence &sequence)
{
    return std::to_string(j + 1) + ". " + inspectionRowText(sequence);
}

std::string TlistTexts::repairedTesterName(int index, const std::string &name)
{
    if (!trimmed(name).empty())
        return name;
    return "USER TESTER " + std::to_string(index + 1);
}
