#include "TtypedText.h"

std::string TtypedText::cleanName(std::string text)
{
    for (char &c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 32 || u == 127)
            c = ' ';
    }
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}
