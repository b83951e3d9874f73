#pragma once
// A loopback address of this test process alone. Test programs run side by side
// (ctest -j, or another checkout testing on the same machine) and bind port 60601,
// so fixed addresses would meet. 127.192.0.0 to 127.255.255.255: the process id
// picks the middle octets, the test's own number the last.
#include "TtransportParams.h"
#include <cstdint>
#include <string>
#include <unistd.h>

struct LoopbackAddress {
    std::uint8_t a = 127, b, c, d;

    explicit LoopbackAddress(int test)
        : b(std::uint8_t(192 + (::getpid() >> 8) % 64)), c(std::uint8_t(::getpid() & 255)),
          d(std::uint8_t(1 + test % 254))
    {
    }
    TtransportParams ethernet() const { return TtransportParams::makeEthernet(a, b, c, d); }
    std::string text() const
    {
        return std::to_string(a) + "." + std::to_string(b) + "." + std::to_string(c) + "." + std::to_string(d);
    }
};
