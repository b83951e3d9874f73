#include "TtransportParams.h"
#include <cstdio>
#include <cstring>

TtransportParams TtransportParams::makeUSB()
{
    TtransportParams p;
    std::memset(&p, 0, sizeof p);
    p.usb.productId = 0xEB71;
    p.usb.vendorId = 0x0403;
    return p;
}

TtransportParams TtransportParams::makeEthernet(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d)
{
    TtransportParams p;
    std::memset(&p, 0, sizeof p);
    p.ethernet.port = AnalyzerTcpPort;
    p.ethernet.a = a;
    p.ethernet.b = b;
    p.ethernet.c = c;
    p.ethernet.d = d;
    p.ethernet.connectTimeout = 0;
    return p;
}

TtransportParams TtransportParams::makeSerial(int portNumber)
{
    TtransportParams p;
    std::memset(&p, 0, sizeof p);
    std::snprintf(p.serial.portName, sizeof p.serial.portName, "COM%d", portNumber);
    p.serial.parity = 0;
    p.serial.stopBits = 0;
    p.serial.byteSize = 8;
    p.serial.baudRate = 19200;
    return p;
}
