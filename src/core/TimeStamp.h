#pragma once
#include <string>

// The local time as it goes into file names: "20261123-141503", sorting as time does.
std::string localTimeStamp();
