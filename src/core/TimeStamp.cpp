#include "TimeStamp.h"

namespace {
std::string formatted(std::time_t time, const char *format)
{
    std::tm local{};
    localtime_r(&time, &local);
    char text[32];
    std::strftime(text, sizeof text, format, &local);
    return text;
}
} // namespace

std::string localTimeStamp()
{
    return formatted(std::time(nullptr), "%Y%m%d-%H%M%S");
}

std::string localTimeText(std::time_t time)
{
    return formatted(time, "%Y-%m-%d %H:%M:%S");
}
