#pragma once
// The data set's 8-bit Windows-1252 texts for a UTF-8 terminal or JSON.
#include <string>

class TtextEncoding {
public:
    // Windows-1252 to UTF-8; a tab becomes U+00BB "»" when showTabs is set.
    static std::string toUtf8(const std::string &text, bool showTabs = false);
    // A JSON string literal (quotes included) of UTF-8 text.
    static std::string jsonString(const std::string &utf8);
};
