#include "TautosequenceCall.h"
#include "TlistTexts.h"
#include <cctype>

namespace {
const char *const NoSuchSequence = " (no such autosequence)";

// 1..99 from two digits; 0 when they are not.
int twoDigitNumber(const std::string &command)
{
    if (command.size() < 5 || !std::isdigit(static_cast<unsigned char>(command[3])) ||
        !std::isdigit(static_cast<unsigned char>(command[4])))
        return 0;
    return (command[3] - '0') * 10 + (command[4] - '0');
}

std::string label(const Tautosequence &sequence)
{
    if (sequence.isUnused())
        return TlistTexts::UnusedText;
    std::string text;
    for (const std::string &title : {TlistTexts::trim(Tautosequence::titleText(sequence.title1)),
                                     TlistTexts::trim(Tautosequence::titleText(sequence.title2))})
        if (!title.empty())
            text += (text.empty() ? "" : " - ") + title;
    return text;
}

std::string described(const std::string &name, const std::vector<Tautosequence> &sequences, int number)
{
    if (number < 1 || std::size_t(number) > sequences.size())
        return "Runs: " + name + NoSuchSequence;
    const std::string text = label(sequences[std::size_t(number - 1)]);
    return "Runs: " + name + (text.empty() ? "" : " - " + text);
}
} // namespace

std::string TautosequenceCall::runsText(const std::string &command, const std::vector<Tautosequence> &inspections,
                                        const std::vector<TuserTester> &testers)
{
    const std::string code = command.substr(0, 3);
    const int number = twoDigitNumber(command);
    const std::string numberText = std::to_string(number);
    if (code == "PHY")
        return described("Physical inspection " + numberText, inspections, number);
    if (code.size() == 3 && code.compare(0, 2, "UT") == 0 && code[2] >= '1' && code[2] <= '9') {
        const auto tester = std::size_t(code[2] - '1');
        const std::string name = "User tester " + std::string(1, code[2]) + " sequence " + numberText;
        static const std::vector<Tautosequence> none;
        return described(name, tester < testers.size() ? testers[tester].sequences : none, number);
    }
    return "Runs: " + TlistTexts::trim(command) + NoSuchSequence;
}
