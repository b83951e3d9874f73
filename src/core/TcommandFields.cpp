#include "TcommandFields.h"
#include "OpCodeDefinitions.h"
#include "TautosequenceCall.h"
#include "TlistTexts.h"
#include <algorithm>

namespace {
constexpr char AutosequenceOpCode = 'A';

std::string inQuotes(const std::string &text)
{
    return "\"" + text + "\"";
}

std::string typeWords(int typeTag)
{
    return typeTag == TfieldSpec::WholeNumber ? "a whole number" : "a number";
}
} // namespace

std::string TnamedCommand::text() const
{
    std::string text;
    for (const TnamedValue &value : values)
        text +=
            (text.empty() ? "" : ", ") + value.label + "=" + value.value + (value.unit.empty() ? "" : " ") + value.unit;
    return text;
}

TcommandFields TcommandFields::load(const std::filesystem::path &dataFolder)
{
    TcommandFields fields;
    for (const std::filesystem::path &file : OpCodeDefinitions::listFiles(dataFolder)) {
        try {
            const char opCode = OpCodeDefinitions::readHeader(file).opCode;
            if (fields.m_codecs.contains(opCode) || fields.m_broken.contains(opCode))
                continue;
            std::vector<std::string> lines = OpCodeDefinitions::readLines(file);
            lines.erase(lines.begin(), lines.begin() + std::min<std::size_t>(2, lines.size()));
            if (opCode != AutosequenceOpCode) {
                fields.setFields(opCode, lines);
            } else if (std::vector<TautoSequenceType> types; TautoSequenceTypes::parse(lines, types)) {
                fields.setAutosequenceTypes(std::move(types));
            } else {
                fields.m_broken[opCode] = "a line of " + file.filename().string() + " is no autosequence type";
            }
        } catch (const TopCodeFileCorrupt &) {
            continue; // its letter stays unknown, as in the op-code table
        }
    }
    return fields;
}

void TcommandFields::setFields(char opCode, const std::vector<std::string> &fieldLines)
{
    try {
        m_codecs[opCode] = TcommandCodec::fromFieldLines(fieldLines);
    } catch (const TInstrPanelError &) {
        m_codecs.erase(opCode);
        m_broken[opCode] =
            std::string("a field line of the definition file of op code ") + opCode + " breaks the grammar";
    }
}

void TcommandFields::setAutosequenceTypes(std::vector<TautoSequenceType> types)
{
    m_autoTypes = std::move(types);
    m_codecs[AutosequenceOpCode] = TcommandCodec();
}

TnamedCommand TcommandFields::name(const TInstr &record) const
{
    if (auto broken = m_broken.find(record.opCode); broken != m_broken.end())
        return {{}, broken->second};
    auto codec = m_codecs.find(record.opCode);
    if (codec == m_codecs.end())
        return {{}, std::string("no definition file defines op code ") + record.opCode};
    const std::string text = record.commandText();
    if (record.opCode == AutosequenceOpCode)
        return nameAutosequence(TlistTexts::trim(text));

    TnamedCommand named;
    const std::vector<TfieldSpec> &fields = codec->second.fields();
    try {
        codec->second.parse(text, [&](std::size_t k, const std::string &value) {
            named.values.push_back({fields[k].leftLabel, value, fields[k].rightLabel});
        });
    } catch (const TInstrPanelError &error) {
        if (error.code == 4) {
            const TfieldSpec &field = fields[named.values.size()];
            std::string value = TfieldSpec::splitAtTabs(text)[named.values.size()];
            value.erase(value.find_last_not_of(' ') + 1);
            named.misfit = inQuotes(value) + " is not " + typeWords(field.typeTag) + " (" + field.leftLabel + ")";
        } else {
            named.misfit = std::to_string(TfieldSpec::splitAtTabs(text).size()) + " values for " +
                           std::to_string(fields.size()) + (fields.size() == 1 ? " field" : " fields");
        }
    }
    return named;
}

TnamedCommand TcommandFields::nameAutosequence(const std::string &text) const
{
    const TautosequenceCall::Call call = TautosequenceCall::parse(text);
    for (const TautoSequenceType &type : m_autoTypes) {
        if (type.code != call.code)
            continue;
        TnamedCommand named{{{"Autosequence Type", type.text, ""}}, ""};
        if (call.number < 1 || call.number > type.count)
            named.misfit = inQuotes(call.numberText) + " is no number from 01 to " + (type.count < 10 ? "0" : "") +
                           std::to_string(type.count);
        else
            named.values.push_back({"Number", std::to_string(call.number), ""});
        return named;
    }
    return {{}, "no autosequence type " + inQuotes(call.code)};
}
