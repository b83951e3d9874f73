#pragma once
// A pseudo-terminal pair: the test plays the far end on the master side while the
// code under test opens the slave (through a COMn override or the port list).
#include "TrawClient.h"
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

class PtyPair {
public:
    PtyPair() : master(posix_openpt(O_RDWR | O_NOCTTY)), m_far(std::make_unique<TrawClient>(master))
    {
        grantpt(master);
        unlockpt(master);
        slavePath = ptsname(master);
        // Keep the line raw so bytes pass unchanged in both directions. The slave
        // stays open here too, so the master never sees a hang-up while the port
        // under test is closed.
        m_slave = ::open(slavePath.c_str(), O_RDWR | O_NOCTTY);
        termios tio{};
        tcgetattr(m_slave, &tio);
        cfmakeraw(&tio);
        tcsetattr(m_slave, TCSANOW, &tio);
    }
    ~PtyPair() { hangUp(); }
    // A terminal takes a few KB at a time, so this may wait for the reader.
    void send(const std::string &bytes) { m_far->send(bytes); }
    std::string receive(std::size_t n) { return m_far->receive(n); }
    // Closes the master side: the slave's line hangs up.
    void hangUp()
    {
        m_far.reset();
        if (m_slave >= 0)
            ::close(m_slave);
        master = m_slave = -1;
    }
    // 1 when the slave carries the exclusive mark; when a non-privileged open is refused for it, 1 too.
    int exclusiveMark() const
    {
        const int fd = ::open(slavePath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        if (fd < 0)
            return errno == EBUSY;
        int flag = -1;
        ::ioctl(fd, TIOCGEXCL, &flag);
        ::close(fd);
        return flag;
    }
    int master;
    std::string slavePath;

private:
    std::unique_ptr<TrawClient> m_far;
    int m_slave = -1;
};
