#pragma once
// 8-bit texts of the data set and the analyzer are Windows-1252; widgets use QString.
#include <QString>
#include <string>

class TguiText {
public:
    static QString fromBytes(const std::string &bytes);
    static std::string toBytes(const QString &text);
    // For display only: a tab is shown as "»".
    static QString forDisplay(const std::string &bytes);
};
