#pragma once
// Names typed or pasted by a user (category names, user tester names) before they
// are stored: a pasted line feed or tab must not reach a file whose lines or
// fixed fields it would break.
#include <string>

class TtypedText {
public:
    // Characters below 32 and 127 become blanks; then blanks are trimmed at both ends.
    static std::string cleanName(std::string text);
};
