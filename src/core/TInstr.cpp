#include "TInstr.h"
#include <cstring>

void TInstr::clear()
{
    category = 0;
    opCode = 0;
    std::memset(command, 0xFF, sizeof command);
}

void TInstr::assign(const TInstr &other)
{
    assign(other.category, other.opCode, other.commandText());
}

void TInstr::assign(char cat, char op, const std::string &text)
{
    category = cat;
    opCode = op;
    // Bounded copy: zero padding after the text, last byte always 0.
    std::memset(command, 0, sizeof command);
    // A bounded string copy: it stops at the first 0 of the text.
    std::memcpy(command, text.data(), strnlen(text.c_str(), sizeof command - 1));
    command[sizeof command - 1] = 0;
}

std::string TInstr::commandText() const
{
    return std::string(command, strnlen(command, sizeof command - 1));
}
