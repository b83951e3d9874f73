#pragma once
// One checkitem slot: category letter, op-code letter, 41-character command text.
// The same 44 bytes in memory, in Data/mit.dat and on the wire.
#include <cstddef>
#include <string>

struct TInstr {
    char category;   // 'A'..'Z', ' ' for none, 0 for a free slot
    char opCode;     // key into the op-code table, 0 for a free slot
    char command[42];// at most 41 characters, byte 43 always 0

    TInstr() { clear(); }
    TInstr(char cat, char op, const std::string &text) { assign(cat, op, text); }

    void clear();
    bool isFree() const { return category == 0 || opCode == 0; }
    void assign(const TInstr &other);
    void assign(char cat, char op, const std::string &text);
    // Command text up to its terminating 0 (at most 41 characters).
    std::string commandText() const;
};
using _instructionStruct = TInstr;

static_assert(sizeof(TInstr) == 44);
static_assert(offsetof(TInstr, category) == 0);
static_assert(offsetof(TInstr, opCode) == 1);
static_assert(offsetof(TInstr, command) == 2);
