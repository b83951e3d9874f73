#include "TserialPortMap.h"
#include <QSettings>
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
    for (const QString &key : ini.childKeys()) {
        if (!key.startsWith(QLatin1String("COM"), Qt::CaseInsensitive))
            continue;
        bool ok = false;
        int port = key.mid(3).toInt(&ok);
        if (ok && port >= 1 && port <= MaxPort)
            result[port] = ini.value(key).toString().toStdString();
    }
    return result;
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
