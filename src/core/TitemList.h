#pragma once
// The checkitem numbers of an autosequence (24 positions) or a checklist (96): the
// list ends at the first 0 and every position after the end holds 0xFFFF; a full
// list has a checkitem in its last position and no 0. A view over the record's own
// positions, so the records keep their fixed layout.
#include <cstdint>
#include <span>
#include <vector>

class TitemList {
public:
    static constexpr std::uint16_t EndOfList = 0;
    static constexpr std::uint16_t Unused = 0xFFFF;
    enum class AppendResult { Added, Full, NoEnd };

    explicit TitemList(std::span<std::uint16_t> positions) : m_positions(positions) {}

    static bool holdsCheckitem(std::uint16_t item) { return item != EndOfList && item != Unused; }
    // The checkitems in use: the positions before the first 0 or 0xFFFF.
    static std::span<const std::uint16_t> used(std::span<const std::uint16_t> positions);
    static int count(std::span<const std::uint16_t> positions) { return int(used(positions).size()); }
    int count() const { return count(m_positions); }

    // Full: the last position holds a checkitem. NoEnd: no 0 to append at (a list
    // that ran out without one), left as it is.
    AppendResult append(std::uint16_t number);
    void clear();
    // Each returns the row to select afterwards, or -1 when it does nothing: a row
    // that holds no checkitem, a move past an edge, too few checkitems to move.
    int removeAt(int row);
    int top(int row);
    int up(int row);
    int down(int row);
    int bottom(int row);

    // Position by position up to and including the first 0 of source; 0xFFFF after it.
    void assignUpToEnd(std::span<const std::uint16_t> source);
    // A file record's items: as many as fit when there are enough, else up to the first
    // 0 or 0xFFFF (written as 0) and 0xFFFF after; items that run out leave no 0.
    void assignFileItems(const std::vector<std::uint16_t> &items);

private:
    bool holdsRow(int row) const { return row >= 0 && row < count(); }

    std::span<std::uint16_t> m_positions;
};
