#include "TautosequenceCall.h"
#include "TlistTexts.h"
#include <algorithm>
#include <cctype>

namespace {
const char *const NoSuchSequence = " (no such autosequence)";

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

TautosequenceCall::Call TautosequenceCall::parse(const std::string &command)
{
    Call call{command.substr(0, 3), command.size() > 3 ? command.substr(3) : std::string(), 0};
    call.numberText.erase(call.numberText.find_last_not_of(' ') + 1);
    const std::string &digits = call.numberText;
    // The panel pads to two digits and writes no other leading zero; 16 bits at most.
    const bool written = digits.size() >= 2 && digits.size() <= 5 && (digits.size() == 2 || digits[0] != '0') &&
                         std::all_of(digits.begin(), digits.end(),
                                     [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; });
    if (written && std::stoi(digits) <= 0xFFFF)
        call.number = std::stoi(digits);
    return call;
}

std::string TautosequenceCall::runsText(const std::string &command, const std::vector<Tautosequence> &inspections,
                                        const std::vector<TuserTester> &testers)
{
    const Call call = parse(command);
    const std::string &code = call.code;
    const int number = call.number;
    if (number == 0) // "PHY3", "PHY": no number to name
        return "Runs: " + TlistTexts::trim(command) + NoSuchSequence;
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
