// Serial port numbers and their devices: the fixed families, the SERIALPORTS
// section of KT930pc.ini (read the same by the program and the command-line
// tool), and the probe of the port list.
#include "TserialPortMap.h"
#include "PtyPair.h"
#include "TempDir.h"
#include <algorithm>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

TEST(SerialPortMap, FixedFamiliesAndOnlyKeysComAndANumberFrom1To256MapAPort)
{
    // clang-format off
    const std::pair<int, std::string> devices[] = {{1, "/dev/ttyS0"}, {32, "/dev/ttyS31"}, {33, "/dev/ttyUSB0"},
        {64, "/dev/ttyUSB31"}, {65, "/dev/ttyACM0"}, {96, "/dev/ttyACM31"}, {97, ""}, {0, ""}};
    // clang-format on
    for (const auto &[port, device] : devices)
        EXPECT_EQ(TserialPortMap::defaultDevice(port), device) << port;
    TempDir dir;
    const auto ini = dir.write("KT930pc.ini", "[SERIALPORTS]\nCOM7=/dev/seven\ncom8=/dev/eight\nCOM256=/dev/last\n"
                                              "COM12x=/dev/no\nCOM+5=/dev/no\nCOM0=/dev/no\nCOM257=/dev/no\n"
                                              "COM1000=/dev/no\nCOM=/dev/no\nPORT3=/dev/no\n[COMM]\nCOM9=/dev/no\n");
    const auto overrides = TserialPortMap::readOverrides(ini);
    EXPECT_EQ(overrides, (std::map<int, std::string>{{7, "/dev/seven"}, {8, "/dev/eight"}, {256, "/dev/last"}}));
    EXPECT_EQ((std::vector{TserialPortMap::deviceOf(7, overrides), TserialPortMap::deviceOf(12, overrides)}),
              (std::vector<std::string>{"/dev/seven", "/dev/ttyS11"}));
}

// Another program's exclusive hold survives the probe (a privileged probe could
// open the port anyway), and the probe leaves no hold of its own behind.
TEST(SerialPortMap, ProbeSkipsAHeldPortAndKeepsItsHold)
{
    PtyPair held, free;
    const int holder = ::open(held.slavePath.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(holder, 0);
    ASSERT_EQ(::ioctl(holder, TIOCEXCL), 0);
    const std::vector<int> ports = TserialPortMap::freePorts({{200, held.slavePath}, {201, free.slavePath}});
    EXPECT_EQ(std::pair(std::count(ports.begin(), ports.end(), 200), std::count(ports.begin(), ports.end(), 201)),
              std::pair(0L, 1L));
    EXPECT_EQ(std::pair(held.exclusiveMark(), free.exclusiveMark()), std::pair(1, 0));
    ::close(holder);
}
