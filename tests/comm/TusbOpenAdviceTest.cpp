#include "TusbOpenAdvice.h"
#include <gtest/gtest.h>

// No device, a device tried and a busy one are checked through the real USB stack; the emulated chip denies no one.
TEST(TusbOpenAdvice, ADeniedDeviceNamesTheUdevRuleTheReplugAndTheSeat)
{
    EXPECT_EQ(TusbOpenAdvice::forFailure({"0403:6001 \"\"", true}),
              "USB device tried: 0403:6001 \"\"\nthe device is attached but this user may not open it (permission "
              "denied): install the package's udev rule (/usr/lib/udev/rules.d/60-kt930pc.rules) and reload the "
              "rules, replug the analyzer, and work as the user logged in at the seat (or a member of the group the "
              "device node belongs to)\n");
}
