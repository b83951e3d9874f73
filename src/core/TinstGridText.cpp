#include "TinstGridText.h"
#include <stdexcept>

namespace {
// Tabs further on are left as they are: the grid never showed more of the text.
constexpr std::size_t TabScanLength = 43;
constexpr char TabMark = char(0xBB);
}

const std::array<std::string, 4> &TinstGridText::header()
{
    static const std::array<std::string, 4> texts{"No.", "Category", "Op Code", "Command"};
    return texts;
}

std::array<std::string, 4> TinstGridText::row(const TInstrDatabase &db, std::uint32_t index,
                                              const TcategoryMap &descriptors)
{
    const TInstr &record = db[index];
    return {std::to_string(index + 1), CategoryDescriptors::displayText(descriptors, record.category),
            TInstrDatabase::nameOf(record.opCode), command(record)};
}

std::array<std::string, 4> TinstGridText::rowForEditor(const TInstrDatabase &db, std::uint32_t index,
                                                       const TcategoryMap &descriptors)
{
    try {
        return row(db, index, descriptors);
    } catch (const std::runtime_error &) {
        const TInstr &record = db[index];
        return {std::to_string(index + 1), CategoryDescriptors::displayText(descriptors, record.category),
                std::string(), command(record)};
    }
}

std::string TinstGridText::command(const TInstr &record)
{
    // A deleted checkitem that a sequence still names: its cleared bytes are no text.
    if (record.isFree())
        return {};
    std::string text = record.commandText();
    for (std::size_t i = 0; i < text.size() && i < TabScanLength; ++i)
        if (text[i] == '\t')
            text[i] = TabMark;
    return text;
}
