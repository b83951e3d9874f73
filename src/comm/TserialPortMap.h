#pragma once
// Serial port numbers (the N of "COMn") and the devices they stand for.
#include <filesystem>
#include <map>
#include <string>
#include <vector>

class TserialPortMap {
public:
    static constexpr int MaxPort = 256;

    // COM1-32 /dev/ttyS0-31, COM33-64 /dev/ttyUSB0-31, COM65-96 /dev/ttyACM0-31; else "".
    static std::string defaultDevice(int port);
    // Section SERIALPORTS of an ini file: COMn=path. A key counts only when it is
    // "COM" (any case) and a number from 1 to 256, nothing else; others are ignored.
    static std::map<int, std::string> readOverrides(const std::filesystem::path &iniFile);
    // The port number of such a key; 0 when the key is none.
    static int portOfKey(const std::string &key);
    static std::string deviceOf(int port, const std::map<int, std::string> &overrides);
    // Numbers (ascending) of the ports whose device opens now: read/write,
    // non-blocking, no controlling terminal, exclusively. A port that another
    // program holds exclusively is skipped, its hold untouched. Each is closed at once.
    static std::vector<int> freePorts(const std::map<int, std::string> &overrides);
};
