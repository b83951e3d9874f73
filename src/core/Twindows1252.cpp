#include "Twindows1252.h"

char Twindows1252::toUpper(char c)
{
    const auto u = static_cast<unsigned char>(c);
    if (u >= 'a' && u <= 'z')
        return static_cast<char>(u - 0x20);
    // à..þ map onto À..Þ, except ÷ whose place among the capitals holds ×.
    if (u >= 0xE0 && u <= 0xFE && u != 0xF7)
        return static_cast<char>(u - 0x20);
    switch (u) {
    case 0x9A: return static_cast<char>(0x8A); // š Š
    case 0x9C: return static_cast<char>(0x8C); // œ Œ
    case 0x9E: return static_cast<char>(0x8E); // ž Ž
    case 0xFF: return static_cast<char>(0x9F); // ÿ Ÿ
    default: return c;
    }
}

std::string Twindows1252::toUpper(std::string text)
{
    for (char &c : text)
        c = toUpper(c);
    return text;
}
