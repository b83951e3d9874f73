#pragma once
// Builds file and analyzer image bytes from the documented layouts, independently
// of the writers under test: .asq headers and records, 44-byte checkitem records.
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace ByteBuilder {
inline std::string le16(std::uint16_t v)
{
    return std::string{static_cast<char>(v & 0xFF), static_cast<char>(v >> 8)};
}

// Writes bytes over an image at an offset (the image is already sized).
inline void putText(std::string &image, std::size_t offset, const std::string &text)
{
    image.replace(offset, text.size(), text);
}
inline void putWord(std::string &image, std::size_t offset, std::uint16_t value)
{
    putText(image, offset, le16(value));
}

// A text field of `width` bytes: the text, then zeros.
inline std::string field(const std::string &text, std::size_t width)
{
    std::string out = text.substr(0, width);
    out.resize(width, '\0');
    return out;
}

inline std::string asqHeader(const std::string &title, const std::string &subtitle, std::uint16_t count)
{
    return field(title, 64) + field(subtitle, 64) + le16(count);
}

inline std::string asqRecord(const std::string &title1, const std::string &title2, std::uint16_t setting,
                             const std::vector<std::uint16_t> &items)
{
    std::string out = field(title1, 64) + field(title2, 64) + le16(setting) + le16(std::uint16_t(items.size()));
    for (std::uint16_t item : items)
        out += le16(item);
    return out;
}

// 24 item positions: the given items, a 0, then 0xFFFF.
inline std::vector<std::uint16_t> positions(std::initializer_list<std::uint16_t> items, std::size_t count = 24)
{
    std::vector<std::uint16_t> out(items);
    if (out.size() < count)
        out.push_back(0);
    out.resize(count, 0xFFFF);
    return out;
}

// An autosequence as the analyzer and the program hold it (88 bytes): two 19-byte titles, 24 items (those given,
// then `filler`), the setting.
inline std::string sequenceRecord(const std::string &title1, const std::string &title2, std::uint16_t setting,
                                  std::vector<std::uint16_t> items, std::uint16_t filler = 0x4242)
{
    items.resize(24, filler);
    std::string out = field(title1, 19) + field(title2, 19);
    for (std::uint16_t item : items)
        out += le16(item);
    return out + le16(setting);
}

inline std::string checkitem(char category, char op, const std::string &text)
{
    return std::string{category, op} + field(text.substr(0, 41), 42);
}

inline std::string clearedCheckitem()
{
    return std::string(2, '\0') + std::string(42, '\xFF');
}
} // namespace ByteBuilder
