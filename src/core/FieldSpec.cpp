#include "FieldSpec.h"
#include <charconv>
#include <cstring>
#include <vector>

TInstrPanelError::TInstrPanelError(int code, const char *file, int line)
    : std::runtime_error("TInstrPanelError " + std::to_string(code) + " at " + file + ":" + std::to_string(line)),
      code(code), file(file), line(line)
{
}

namespace {
[[noreturn]] void fail(int line)
{
    throw TInstrPanelError(6, __FILE__, line);
}

bool isQuoted(const std::string &token)
{
    return token.size() >= 2 && token.front() == '"' && token.back() == '"';
}

// Optional sign, digits with at most one decimal point, at least one digit.
bool parseDecimal(const std::string &text, double &value)
{
    std::size_t start = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    bool digits = false, point = false;
    for (std::size_t i = start; i < text.size(); ++i) {
        if (text[i] >= '0' && text[i] <= '9')
            digits = true;
        else if (text[i] == '.' && !point)
            point = true;
        else
            return false;
    }
    if (!digits)
        return false;
    // from_chars does not take a '+' and ignores the locale (Qt sets LC_NUMERIC).
    std::size_t from = text[0] == '+' ? 1 : 0;
    auto result = std::from_chars(text.data() + from, text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}
}

bool TfieldSpec::readRange(const std::string &typeSpec, TdataInfo &range)
{
    range = TdataInfo();
    // Positions counted from 0: the letter at 1, the minimum from 2, the closing quote last.
    if (typeSpec.size() < 4)
        return false;
    const std::size_t comma = typeSpec.find(',');
    if (comma == std::string::npos || comma == 2 || comma >= typeSpec.size() - 2)
        return false;
    TdataInfo read;
    if (!parseDecimal(typeSpec.substr(2, comma - 2), read.minimum)
        || !parseDecimal(typeSpec.substr(comma + 1, typeSpec.size() - 2 - comma), read.maximum)
        || read.maximum < read.minimum)
        return false;
    read.hasRange = true;
    range = read;
    return true;
}

std::vector<std::string> TfieldSpec::splitAtTabs(const std::string &text)
{
    std::vector<std::string> tokens;
    std::size_t start = 0;
    for (;;) {
        std::size_t tab = text.find('\t', start);
        tokens.push_back(text.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
        if (tab == std::string::npos)
            return tokens;
        start = tab + 1;
    }
}

TfieldSpec TfieldSpec::parse(const std::string &line)
{
    const std::vector<std::string> tokens = splitAtTabs(line);
    if (tokens.size() != 3)
        fail(__LINE__);
    for (const std::string &token : tokens)
        if (!isQuoted(token))
            fail(__LINE__);

    TfieldSpec field;
    field.leftLabel = tokens[0].substr(1, tokens[0].size() - 2);
    field.rightLabel = tokens[1].substr(1, tokens[1].size() - 2);

    const std::string &type = tokens[2];
    if (type.size() < 3)
        fail(__LINE__);
    field.typeLetter = type[1];
    if (type.size() == 3) {
        if (field.typeLetter == 0 || !std::strchr("ANFU", field.typeLetter))
            fail(__LINE__);
    } else if ((field.typeLetter != 'N' && field.typeLetter != 'F') || !readRange(type, field.range)) {
        fail(__LINE__);
    }
    switch (field.typeLetter) {
    case 'N': field.typeTag = 1; break;
    case 'F': field.typeTag = 2; break;
    case 'U': field.typeTag = 3; break;
    default: field.typeTag = 0; break;
    }
    return field;
}
