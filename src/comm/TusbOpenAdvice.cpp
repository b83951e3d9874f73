#include "TusbOpenAdvice.h"

std::string TusbOpenAdvice::forFailure(const TusbDeviceApi::OpenAttempt &attempt)
{
    if (attempt.device.empty())
        return "no USB device of vendor 0403 was found\n";
    std::string text = "USB device tried: " + attempt.device + "\n";
    if (attempt.accessDenied)
        text += "the device is attached but this user may not open it (permission denied): install the "
                "package's udev rule (/usr/lib/udev/rules.d/60-kt930pc.rules) and reload the rules, replug "
                "the analyzer, and work as the user logged in at the seat (or a member of the group the "
                "device node belongs to)\n";
    if (attempt.busy)
        text += "the device is in use by another program (its interface is claimed): close that program and "
                "try again\n";
    return text;
}
