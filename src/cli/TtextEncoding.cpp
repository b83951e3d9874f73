#include "TtextEncoding.h"
#include <cstdio>

namespace {
// 0x80..0x9F of Windows-1252; 0 where the code page leaves a hole.
const char16_t high[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
                           0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                           0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void appendUtf8(std::string &out, char32_t code)
{
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}
}

std::string TtextEncoding::toUtf8(const std::string &text, bool showTabs)
{
    std::string out;
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        if (byte == '\t' && showTabs)
            appendUtf8(out, 0xBB);
        else if (byte >= 0x80 && byte < 0xA0)
            appendUtf8(out, high[byte - 0x80] ? high[byte - 0x80] : 0xFFFD);
        else
            appendUtf8(out, byte);
    }
    return out;
}

std::string TtextEncoding::jsonString(const std::string &utf8)
{
    std::string out = "\"";
    for (char c : utf8) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char escape[8];
                std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
                out += escape;
            } else {
                out += c;
            }
        }
    }
    return out + "\"";
}
