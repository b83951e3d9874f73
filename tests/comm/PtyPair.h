#pragma once
// A pseudo-terminal pair: the test plays the far end on the master side while
// TCommPort opens the slave through a COMn override.
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <termios.h>
#include <unistd.h>

class PtyPair {
public:
    PtyPair()
    {
        master = posix_openpt(O_RDWR | O_NOCTTY);
        grantpt(master);
        unlockpt(master);
        slavePath = ptsname(master);
        // Keep the line raw so bytes pass unchanged in both directions. The slave
        // stays open here too, so the master never sees a hang-up while the port
        // under test is closed.
        m_slave = ::open(slavePath.c_str(), O_RDWR | O_NOCTTY);
        termios tio {};
        tcgetattr(m_slave, &tio);
        cfmakeraw(&tio);
        tcsetattr(m_slave, TCSANOW, &tio);
    }
    ~PtyPair() { hangUp(); }
    // Writes all bytes; a terminal takes a few KB at a time, so this may wait for the reader.
    void send(const std::string &bytes)
    {
        std::size_t done = 0;
        while (done < bytes.size()) {
            ssize_t r = ::write(master, bytes.data() + done, bytes.size() - done);
            if (r <= 0)
                return;
            done += std::size_t(r);
        }
    }
    // Closes the master side: the slave's line hangs up.
    void hangUp()
    {
        if (master >= 0)
            ::close(master);
        if (m_slave >= 0)
            ::close(m_slave);
        master = m_slave = -1;
    }
    // Reads exactly n bytes from the master side, waiting up to 5 s.
    std::string receive(std::size_t n)
    {
        std::string out;
        while (out.size() < n) {
            pollfd p {master, POLLIN, 0};
            if (::poll(&p, 1, 5000) <= 0)
                break;
            char buffer[512];
            ssize_t r = ::read(master, buffer, std::min(sizeof buffer, n - out.size()));
            if (r <= 0)
                break;
            out.append(buffer, std::size_t(r));
        }
        return out;
    }
    int master = -1;
    std::string slavePath;

private:
    int m_slave = -1;
};
