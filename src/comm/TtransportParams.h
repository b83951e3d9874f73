#pragma once
// Transport parameters, one variant per transport mode, filled before the module is made.
#include <cstdint>

struct TusbParams {
    std::uint32_t productId; // 0xEB71; carried, the open goes by description
    std::uint32_t vendorId;  // 0x0403
};

struct TethernetParams {
    std::uint32_t port; // 60601
    std::uint8_t a, b, c, d;
    std::uint32_t connectTimeout; // ms; 0 uses the module timeout
};

struct TserialParams {
    char portName[15]; // "COM%d"
    std::uint8_t parity;   // 0 none
    std::uint8_t stopBits; // 0 one stop bit
    std::uint8_t byteSize; // 8
    std::uint32_t baudRate; // 19200
};

union TtransportParams {
    TusbParams usb;
    TethernetParams ethernet;
    TserialParams serial;

    static TtransportParams makeUSB();
    static TtransportParams makeEthernet(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d);
    static TtransportParams makeSerial(int portNumber);
};

// Transport modes of the module (not the method numbers of the settings or records).
enum TcommMode : std::uint8_t { ModeNone = 0, ModeSerial = 1, ModeUSB = 2, ModeEthernet = 3 };

constexpr std::uint32_t AnalyzerTcpPort = 60601;
