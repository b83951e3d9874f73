#include "TlistTexts.h"
#include "TtypedText.h"
#include "Twindows1252.h"

std::string TlistTexts::romanNumeral(int number)
{
    static const char *const tens[] = {"", "x", "xx", "xxx"};
    static const char *const ones[] = {"", "i", "ii", "iii", "iv", "v", "vi", "vii", "viii", "ix"};
    if (number < 1 || number > 38)
        return "";
    return std::string(tens[number / 10]) + ones[number % 10];
}

std::string TlistTexts::trim(const std::string &text)
{
    auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    std::size_t first = 0, last = text.size();
    while (first < last && isBlank(text[first]))
        ++first;
    while (last > first && isBlank(text[last - 1]))
        --last;
    return text.substr(first, last - first);
}

std::string TlistTexts::sequenceText(const Tautosequence &sequence)
{
    if (sequence.isUnused())
        return UnusedText;
    return trim(Tautosequence::titleText(sequence.title1)) + " - " + trim(Tautosequence::titleText(sequence.title2));
}

std::string TlistTexts::testerRoot(int index, TuserTester &tester)
{
    if (trim(tester.name).empty())
        tester.name = "USER TESTER " + std::to_string(index + 1);
    return romanNumeral(index + 1) + ". " + tester.name;
}

std::string TlistTexts::testerName(const std::string &typed)
{
    return Twindows1252::toUpper(TtypedText::cleanName(typed));
}

std::string TlistTexts::testerChild(int index, const Tautosequence &sequence)
{
    return std::to_string(index + 1) + ". " + sequenceText(sequence);
}

std::string TlistTexts::checklistRow(const TTestProc &checklist)
{
    return checklist.isUnused() ? UnusedText : trim(checklist.titleText());
}
