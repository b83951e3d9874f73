#pragma once
// A loopback address of this test process alone. Test programs run side by side
// (ctest -j, or another checkout testing on the same machine) and bind port 60601,
// so fixed addresses would meet. Each program has its own block of 64 second
// octets; the process id picks the middle octets, the test's own number the last.
#include <cstdint>
#include <string>
#include <unistd.h>

struct LoopbackAddress {
    // Blocks: 192 comm and transfer, 128 end to end and GUI, 64 simulator, 32 command line.
    explicit LoopbackAddress(int test, int block = 192)
        : b(std::uint8_t(block + (::getpid() >> 8) % 64)), c(std::uint8_t(::getpid() & 255)),
          d(std::uint8_t(1 + test % 254))
    {
    }
    std::string text() const
    {
        return std::to_string(a) + "." + std::to_string(b) + "." + std::to_string(c) + "." + std::to_string(d);
    }
    std::uint8_t a = 127, b, c, d;
};
