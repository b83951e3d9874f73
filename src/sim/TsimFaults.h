#pragma once
// Fault injection: what the simulated analyzer does wrong, and when.
//   silent-after=CMD      answers CMD, then nothing more on that connection
//   stop-after-block=K    a get sends blocks 0..K, then stops sending
//   short-block=K         a get sends only the first half of block K, then stops
//   close-at-block=K      a get or put drops the connection where block K is due
//   bad-ack-block=K       a put acknowledges block K with the wrong letter ("*" / "C")
//   no-ack-block=K        a put does not acknowledge block K
//   wrong-store=K         a put acknowledges block K but stores it with its first byte inverted
// Block numbers count from 0. A block fault may end in "@CMD" to apply to that command only.
#include <optional>
#include <string>
#include <vector>

class TsimFaults {
public:
    enum class Kind { SilentAfter, StopAfterBlock, ShortBlock, CloseAtBlock, BadAckBlock, NoAckBlock, WrongStore };
    struct Fault {
        Kind kind;
        int block = -1;
        std::string command; // empty: any command
    };

    // Adds one "--fault" request; false (with why) when it does not parse.
    bool add(const std::string &request, std::string &why);
    // The block fault of that kind for that command and block, if any.
    bool hits(Kind kind, const std::string &command, int block) const;
    bool silentAfter(const std::string &command) const;
    bool empty() const { return m_faults.empty(); }

    static const char *help();

private:
    std::vector<Fault> m_faults;
};
