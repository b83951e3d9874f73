#pragma once
// Reads the chip's bulk packets into a buffer without ever losing a byte: each
// call is a single transfer that reports what it moved even when it times out,
// and no call waits longer than one poll period, so a poll lasts its period and
// a cancel is seen within one.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

class TusbPacketReader {
public:
    using Clock = std::chrono::steady_clock;
    // Moves up to `size` raw bytes within timeoutMs; the bytes moved (also after a
    // time-out), or -1 when the device is gone.
    using Transfer = std::function<int(std::uint8_t *buffer, std::size_t size, int timeoutMs)>;
    using Now = std::function<Clock::time_point()>;

    // Every packet the chip returns begins with two modem-status bytes.
    static constexpr std::size_t StatusBytes = 2;
    static constexpr int LongestCallMs = 50;

    TusbPacketReader(Transfer transfer, std::size_t packetSize, Now now = Clock::now);

    // Transfers until `buffered` holds `needed` bytes or `within` is over, at least once.
    // False when the device is gone.
    bool fill(std::vector<std::uint8_t> &buffered, std::size_t needed, std::chrono::milliseconds within);

private:
    bool transferOnce(std::vector<std::uint8_t> &buffered, int timeoutMs);

    Transfer m_transfer;
    std::size_t m_packetSize;
    Now m_now;
};
