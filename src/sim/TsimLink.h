#pragma once
// One byte stream to the PC (a TCP connection or a pseudo-terminal master), paced
// to a baud rate in both directions, with reads that wait with a deadline.
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
    // With a baud rate it takes no more than the line could have delivered by now,
    // waiting for the next few bytes when they are not due yet.
    Result readPending();
    // Takes exactly size bytes, waiting at most timeoutMs for each further piece.
    Result readExact(std::uint8_t *target, std::size_t size, int timeoutMs);
    std::string &input() { return m_input; }

private:
    enum class Wait { Ready, TimedOut, Stopped };
    Wait waitFor(short events, int timeoutMs);
    bool pauseUntil(std::chrono::steady_clock::time_point due);
    Result readUpTo(std::size_t limit);

    // One direction of the line: when its clock started and how many bytes it carried since.
    struct Pace {
        std::chrono::steady_clock::time_point start;
        std::size_t bytes = 0;
        void restart();
        std::chrono::steady_clock::time_point due(double count, double bytesPerSecond) const;
    };

    int m_fd;
    std::string m_name;
    int m_baud;
    std::string m_input;
    Pace m_out;
    Pace m_in;
    bool m_inBacklog = false; // the last paced read left bytes waiting
};
