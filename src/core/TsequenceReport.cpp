#include "TsequenceReport.h"
#include "TinstGridText.h"
#include <stdexcept>

namespace {
std::string rightTrimmed(const char (&title)[19])
{
    std::string text = Tautosequence::titleText(title);
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}
} // namespace

std::string TsequenceReport::dateText(std::time_t when)
{
    std::tm local{};
    localtime_r(&when, &local);
    char text[128];
    const std::size_t length = std::strftime(text, sizeof text, "%B %d %Y - %X", &local);
    return std::string(text, length);
}

TsequenceReport TsequenceReport::make(const Tautosequence &sequence, const TInstrDatabase &db,
                                      const TcategoryMap &descriptors, std::time_t when)
{
    TsequenceReport report;
    report.date = dateText(when);
    report.title1 = rightTrimmed(sequence.title1);
    report.title2 = rightTrimmed(sequence.title2);
    const std::uint16_t word = TesterSetting::isValid(sequence.setting) ? sequence.setting : 0;
    report.port = TesterSetting::port(word);
    report.baudRate = TesterSetting::baudRate(TesterSetting::baudIndex(word));
    for (int i = 0; i < sequence.itemCount(); ++i)
        report.rows.push_back(rowOf(db, sequence.items[i] - 1u, descriptors));
    return report;
}

std::array<std::string, 3> TsequenceReport::rowOf(const TInstrDatabase &db, std::uint32_t index,
                                                  const TcategoryMap &descriptors)
{
    if (index >= db.size())
        return {};
    try {
        const std::array<std::string, 4> cells = TinstGridText::row(db, index, descriptors);
        return {cells[1], cells[2], cells[3]};
    } catch (const std::runtime_error &) {
        // An op code without a definition file: no name to show.
        const TInstr &record = db[index];
        return {CategoryDescriptors::displayText(descriptors, record.category), std::string(),
                TinstGridText::command(record)};
    }
}
