#pragma once
// What a command-line user reads after a USB transfer failed: which device was
// tried, and, when it was there but could not be opened, how to get access.
#include "TusbDeviceApi.h"
#include <string>

class TusbOpenAdvice {
public:
    static std::string forFailure(const TusbDeviceApi::OpenAttempt &attempt);
};
