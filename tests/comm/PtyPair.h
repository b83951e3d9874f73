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
        // Keep the line raw so bytes pass unchanged in both directions.
        int slave = ::open(slavePath.c_str(), O_RDWR | O_NOCTTY);
        termios tio {};
        tcgetattr(slave, &tio);
        cfmakeraw(&tio);
        tcsetattr(slave, TCSANOW, &tio);
        ::close(slave);
    }
    ~PtyPair() { ::close(master); }
    void send(const std::string &bytes) { (void)!::write(master, bytes.data(), bytes.size()); }
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
};
