#include "CommandCodec.h"
#include <algorithm>
#include <charconv>
#include <cmath>

namespace {
[[noreturn]] void fail(int code, int line)
{
    throw TInstrPanelError(code, __FILE__, line);
}

// Locale-free, so a host that sets LC_NUMERIC reads "0.5" the same.
bool toDouble(const std::string &text, double &value)
{
    if (text.empty())
        return false;
    auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

// Digits with at most one '.', and one '-' only in front.
bool isDecimalText(const std::string &text)
{
    bool point = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '-' && i == 0)
            continue;
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (!TcommandCodec::isDigit(c))
            return false;
    }
    return true;
}

// A bound written back must pass the field's own check when the record is read
// again: no exponent ("1e+20"), and a whole number in a whole-number field, rounded
// into the range and never below 0. 400 characters hold any double in fixed notation.
std::string boundText(double bound, bool wholeNumber, bool isMinimum)
{
    // A whole-number field holds digits only: no sign, not even that of "-0".
    if (wholeNumber)
        bound = std::max(isMinimum ? std::ceil(bound) : std::floor(bound), 0.0) + 0.0;
    char buffer[400];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, bound, std::chars_format::fixed);
    return std::string(buffer, result.ptr);
}

std::string clamped(const TfieldSpec &field, const std::string &value)
{
    const bool numeric = field.typeTag == TfieldSpec::WholeNumber || field.typeTag == TfieldSpec::DecimalNumber;
    double number = 0;
    // A value that is no number yet ("-") is the user's to finish.
    if (!numeric || !field.range.hasRange || !toDouble(value, number))
        return value;
    const bool below = number < field.range.minimum;
    if (!below && !(number > field.range.maximum))
        return value;
    return boundText(below ? field.range.minimum : field.range.maximum, field.typeTag == TfieldSpec::WholeNumber,
                     below);
}
}

TcommandCodec TcommandCodec::fromFieldLines(const std::vector<std::string> &lines)
{
    std::vector<TfieldSpec> fields;
    fields.reserve(lines.size());
    for (const std::string &line : lines)
        fields.push_back(TfieldSpec::parse(line));
    return TcommandCodec(std::move(fields));
}

bool TcommandCodec::fitsType(int typeTag, std::string &value)
{
    switch (typeTag) {
    case TfieldSpec::WholeNumber:
        return std::all_of(value.begin(), value.end(), isDigit);
    case TfieldSpec::DecimalNumber:
        return isDecimalText(value);
    case TfieldSpec::UpperCaseText:
        std::transform(value.begin(), value.end(), value.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; });
        return true;
    default:
        return true;
    }
}

void TcommandCodec::parse(const std::string &text, const ValueSink &accept) const
{
    const std::vector<std::string> tokens = TfieldSpec::splitAtTabs(text);
    for (std::size_t k = 0; k < tokens.size(); ++k) {
        if (k >= m_fields.size())
            fail(2, __LINE__);
        std::string value = tokens[k];
        value.erase(value.find_last_not_of(' ') + 1);
        if (!fitsType(m_fields[k].typeTag, value))
            fail(4, __LINE__);
        accept(k, value);
    }
    if (tokens.size() < m_fields.size())
        fail(3, __LINE__);
}

std::vector<std::string> TcommandCodec::parse(const std::string &text) const
{
    std::vector<std::string> values;
    parse(text, [&values](std::size_t, const std::string &value) { values.push_back(value); });
    return values;
}

std::string TcommandCodec::compose(std::vector<std::string> &values) const
{
    std::string text;
    for (std::size_t k = 0; k < values.size(); ++k) {
        if (k < m_fields.size())
            values[k] = clamped(m_fields[k], values[k]);
        if (k > 0)
            text += '\t';
        text += values[k];
    }
    return padded(std::move(text));
}

std::string TcommandCodec::padded(std::string text)
{
    if (text.size() < CommandLength)
        text.append(CommandLength - text.size(), ' ');
    return text;
}
