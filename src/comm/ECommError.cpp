#include "ECommError.h"
#include <cerrno>

namespace {
const char *const Texts[] = {
    "Bad Serial Port!", "Bad Baud Rate!", "Bad Port Number!", "Bad Stop Bits!", "Bad Parity!",
    "Bad Byte Size!", "Port Already Open!", "Port Not Open!", "Open Error!", "Write Error!",
    "Read Error!", "Close Error!", "Purge Comm Error!", "Flush File Buffers Error!",
    "Get Comm State Error!", "Set Comm State Error!", "Setup Comm Error!",
    "Set Comm Timeouts Error!", "Clear Comm Error!",
};
constexpr std::uint8_t TextCount = sizeof Texts / sizeof Texts[0];
}

ECommError::ECommError(std::uint8_t code) : ECommError(code, errno) {}

ECommError::ECommError(std::uint8_t code, int lastError)
    : std::runtime_error(code < TextCount ? Texts[code] : "Unspecified Serial Port Error"),
      m_code(code), m_lastError(lastError)
{
}

std::string ECommError::text(std::uint8_t code)
{
    return code < TextCount ? Texts[code] : std::string();
}
