#pragma once
// Case mapping of the 8-bit Windows-1252 texts the program keeps (category
// names, checkitem texts): ASCII letters, the accented Latin-1 letters and
// the code page's own Š, Œ, Ž and Ÿ. Letters without a capital here (ß, µ)
// stay as they are.
#include <string>

class Twindows1252 {
public:
    static char toUpper(char c);
    static std::string toUpper(std::string text);
};
