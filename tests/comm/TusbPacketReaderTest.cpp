#include "TusbPacketReader.h"
#include <gtest/gtest.h>
#include <deque>
#include <string>

namespace {
using namespace std::chrono_literals;

// A chip on a simulated clock: each transfer returns the next scripted raw bytes
// after 1 ms, or, when the script is out, nothing after its whole time-out.
struct ScriptedChip {
    std::deque<std::string> transfers; // "gone" fails the transfer
    TusbPacketReader::Clock::time_point now {};
    std::vector<int> timeouts;

    TusbPacketReader reader()
    {
        return TusbPacketReader(
            [this](std::uint8_t *buffer, std::size_t size, int timeoutMs) {
                timeouts.push_back(timeoutMs);
                if (transfers.empty()) {
                    now += std::chrono::milliseconds(timeoutMs);
                    return 0;
                }
                std::string raw = transfers.front();
                transfers.pop_front();
                now += 1ms;
                if (raw == "gone")
                    return -1;
                raw.resize(std::min(raw.size(), size));
                std::copy(raw.begin(), raw.end(), buffer);
                return int(raw.size());
            },
            64, [this] { return now; });
    }
};

std::string packet(char fill, std::size_t payload) { return "ss" + std::string(payload, fill); }
}

TEST(TusbPacketReader, KeepsEveryByteAndNoCallOutlastsAPoll)
{
    const struct {
        const char *name;
        std::deque<std::string> transfers;
        std::size_t needed;
        std::chrono::milliseconds within;
        std::string expected;
        bool alive;
        int longestMs, calls;
        std::chrono::milliseconds elapsedAtMost;
    } cases[] = {
        // two packets in one transfer, then a stall: both payloads stay
        {"stall after data", {packet('a', 62) + packet('b', 3)}, 200, 300ms,
         std::string(62, 'a') + "bbb", true, 50, 7, 300ms},
        {"status-only packets", {"ss", "ss", packet('c', 4)}, 4, 50ms, "cccc", true, 50, 3, 3ms},
        {"silent chip, one poll", {}, 1, 50ms, "", true, 50, 1, 50ms},
        {"silent chip, a block's read", {}, 1, 264ms, "", true, 50, 6, 264ms},
        {"pending count only looks", {}, 0, 1ms, "", true, 1, 1, 1ms},
        {"unplugged", {packet('d', 2), "gone"}, 10, 50ms, "dd", false, 50, 2, 2ms},
    };
    for (const auto &c : cases) {
        ScriptedChip chip;
        chip.transfers = c.transfers;
        auto reader = chip.reader();
        std::vector<std::uint8_t> buffered;
        EXPECT_EQ(reader.fill(buffered, c.needed, c.within), c.alive) << c.name;
        EXPECT_EQ(std::string(buffered.begin(), buffered.end()), c.expected) << c.name;
        EXPECT_EQ(*std::max_element(chip.timeouts.begin(), chip.timeouts.end()), c.longestMs) << c.name;
        EXPECT_EQ(int(chip.timeouts.size()), c.calls) << c.name;
        EXPECT_LE(chip.now - TusbPacketReader::Clock::time_point {}, c.elapsedAtMost) << c.name;
    }
}
