#pragma once
// One byte stream to the PC (a TCP connection or a pseudo-terminal master), with
// output paced to a baud rate and reads that wait with a deadline.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

class TsimLink {
public:
    enum class Result { Ok, Closed, TimedOut, Stopped };

    TsimLink(int fd, std::string name, int baud);
    const std::string &name() const { return m_name; }
    int fd() const { return m_fd; }

    // Writes everything, at most baud/10 bytes a second when a baud rate is set.
    Result write(const void *data, std::size_t size);
    Result write(const std::string &text) { return write(text.data(), text.size()); }
    // Appends what is pending now to the input buffer (called when poll says readable).
    Result readPending();
    // Takes exactly size bytes, waiting at most timeoutMs for each further piece.
    Result readExact(std::uint8_t *target, std::size_t size, int timeoutMs);
    std::string &input() { return m_input; }

private:
    enum class Wait { Ready, TimedOut, Stopped };
    Wait waitFor(short events, int timeoutMs);
    bool pauseUntil(std::chrono::steady_clock::time_point due);

    int m_fd;
    std::string m_name;
    int m_baud;
    std::string m_input;
    std::chrono::steady_clock::time_point m_paceStart;
    std::size_t m_pacedBytes = 0;
};
