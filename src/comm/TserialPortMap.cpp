#include "TserialPortMap.h"
#include <QSettings>
#include <cctype>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

std::string TserialPortMap::defaultDevice(int port)
{
    if (port >= 1 && port <= 32)
        return "/dev/ttyS" + std::to_string(port - 1);
    if (port >= 33 && port <= 64)
        return "/dev/ttyUSB" + std::to_string(port - 33);
    if (port >= 65 && port <= 96)
        return "/dev/ttyACM" + std::to_string(port - 65);
    return {};
}

std::map<int, std::string> TserialPortMap::readOverrides(const std::filesystem::path &iniFile)
{
    std::map<int, std::string> result;
    QSettings ini(QString::fromStdString(iniFile.string()), QSettings::IniFormat);
    ini.beginGroup(QStringLiteral("SERIALPORTS"));
    for (const QString &key : ini.childKeys())
        if (const int port = portOfKey(key.toStdString()))
            result[port] = ini.value(key).toString().toStdString();
    return result;
}

int TserialPortMap::portOfKey(const std::string &key)
{
    // "COM" and one to three digits: "COM12x", "COM+5" and "COM 5" name no port.
    if (key.size() < 4 || key.size() > 6)
        return 0;
    for (std::size_t i = 0; i < 3; ++i)
        if (std::toupper(static_cast<unsigned char>(key[i])) != "COM"[i])
            return 0;
    int port = 0;
    for (std::size_t i = 3; i < key.size(); ++i) {
        if (key[i] < '0' || key[i] > '9')
            return 0;
        port = port * 10 + (key[i] - '0');
    }
    return port >= 1 && port <= MaxPort ? port : 0;
}

std::string TserialPortMap::deviceOf(int port, const std::map<int, std::string> &overrides)
{
    auto it = overrides.find(port);
    return it != overrides.end() ? it->second : defaultDevice(port);
}

std::vector<int> TserialPortMap::freePorts(const std::map<int, std::string> &overrides)
{
    std::vector<int> ports;
    for (int port = 1; port <= MaxPort; ++port) {
        std::string device = deviceOf(port, overrides);
        if (device.empty())
            continue;
        int fd = ::open(device.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY);
        if (fd < 0)
            continue;
        // A privileged probe opens a port that another program holds exclusively:
        // such a port is not free, and its hold is not ours to clear. A port whose
        // hold cannot be read is left alone too.
        int held = 1;
        bool free = ::isatty(fd) && ::ioctl(fd, TIOCGEXCL, &held) == 0 && !held && ::ioctl(fd, TIOCEXCL) == 0;
        if (free)
            ::ioctl(fd, TIOCNXCL); // the probe's own hold
        ::close(fd);
        if (free)
            ports.push_back(port);
    }
    return ports;
}
