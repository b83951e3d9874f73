#include "TusbPacketReader.h"
#include <algorithm>

namespace {
// Whole packets of both full-speed (64-byte) and high-speed (512-byte) chips.
constexpr std::size_t TransferSize = 4096;
}

TusbPacketReader::TusbPacketReader(Transfer transfer, std::size_t packetSize, Now now)
    : m_transfer(std::move(transfer)), m_packetSize(std::max(packetSize, StatusBytes + 1)), m_now(std::move(now))
{
}

bool TusbPacketReader::fill(std::vector<std::uint8_t> &buffered, std::size_t needed,
                            std::chrono::milliseconds within)
{
    const auto deadline = m_now() + within;
    do {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - m_now()).count();
        // A time-out of 0 would mean "wait for ever" to the USB library.
        if (!transferOnce(buffered, int(std::clamp<long long>(left, 1, LongestCallMs))))
            return false;
    } while (buffered.size() < needed && m_now() < deadline);
    return true;
}

bool TusbPacketReader::transferOnce(std::vector<std::uint8_t> &buffered, int timeoutMs)
{
    std::uint8_t raw[TransferSize];
    const std::size_t size = TransferSize - TransferSize % m_packetSize;
    int moved = m_transfer(raw, size, timeoutMs);
    if (moved < 0)
        return false;
    for (std::size_t packet = 0; packet < std::size_t(moved); packet += m_packetSize) {
        const std::size_t end = std::min(packet + m_packetSize, std::size_t(moved));
        if (end > packet + StatusBytes)
            buffered.insert(buffered.end(), raw + packet + StatusBytes, raw + end);
    }
    return true;
}
