#pragma once
// Thrown by TCommPort: an index into the serial message table and the errno
// captured at the moment of the throw.
#include <cstdint>
#include <stdexcept>
#include <string>

class ECommError : public std::runtime_error {
public:
    enum Code : std::uint8_t {
        BadSerialPort = 0, BadBaudRate = 1, BadPortNumber = 2, BadStopBits = 3, BadParity = 4,
        BadByteSize = 5, PortAlreadyOpen = 6, PortNotOpen = 7, OpenError = 8, WriteError = 9,
        ReadError = 10, CloseError = 11, PurgeCommError = 12, FlushFileBuffersError = 13,
        GetCommStateError = 14, SetCommStateError = 15, SetupCommError = 16,
        SetCommTimeoutsError = 17, ClearCommError = 18,
    };

    explicit ECommError(std::uint8_t code);
    ECommError(std::uint8_t code, int lastError);

    std::uint8_t code() const { return m_code; }
    int lastError() const { return m_lastError; }

    // The serial message table: "Bad Serial Port!" ... "Clear Comm Error!", empty for others.
    static std::string text(std::uint8_t code);

private:
    std::uint8_t m_code;
    int m_lastError;
};
