#pragma once
#include <ctime>
#include <string>

// The local time as it goes into file names: "20261123-141503", sorting as time does.
std::string localTimeStamp();
// A local time as a technician reads it: "2026-11-23 14:15:03".
std::string localTimeText(std::time_t time);
