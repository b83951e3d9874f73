#include "TitemList.h"
#include <algorithm>

std::span<const std::uint16_t> TitemList::used(std::span<const std::uint16_t> positions)
{
    const auto end = std::find_if_not(positions.begin(), positions.end(), holdsCheckitem);
    return positions.first(std::size_t(end - positions.begin()));
}

TitemList::AppendResult TitemList::append(std::uint16_t number)
{
    if (holdsCheckitem(m_positions.back()))
        return AppendResult::Full;
    const auto end = std::find(m_positions.begin(), m_positions.end(), EndOfList);
    if (end == m_positions.end())
        return AppendResult::NoEnd;
    *end = number;
    if (end + 1 != m_positions.end())
        end[1] = EndOfList;
    return AppendResult::Added;
}

void TitemList::clear()
{
    std::fill(m_positions.begin(), m_positions.end(), Unused);
    m_positions.front() = EndOfList;
}

int TitemList::removeAt(int row)
{
    if (!holdsRow(row))
        return -1;
    std::copy(m_positions.begin() + row + 1, m_positions.end(), m_positions.begin() + row);
    // The last position is free now: it ends the list when the one before still holds a checkitem.
    const std::size_t last = m_positions.size() - 1;
    m_positions[last] = last > 0 && holdsCheckitem(m_positions[last - 1]) ? EndOfList : Unused;
    return row == 0 ? 0 : row - 1;
}

int TitemList::top(int row)
{
    if (count() < 2 || !holdsRow(row) || row == 0)
        return -1;
    std::rotate(m_positions.begin(), m_positions.begin() + row, m_positions.begin() + row + 1);
    return 0;
}

int TitemList::up(int row)
{
    if (count() < 2 || !holdsRow(row) || row == 0)
        return -1;
    std::swap(m_positions[std::size_t(row)], m_positions[std::size_t(row - 1)]);
    return row - 1;
}

int TitemList::down(int row)
{
    if (count() < 2 || !holdsRow(row) || row == count() - 1)
        return -1;
    std::swap(m_positions[std::size_t(row)], m_positions[std::size_t(row) + 1]);
    return row + 1;
}

int TitemList::bottom(int row)
{
    const int used = count();
    if (used < 2 || !holdsRow(row))
        return -1;
    std::rotate(m_positions.begin() + row, m_positions.begin() + row + 1, m_positions.begin() + used);
    return used - 1;
}

void TitemList::assignUpToEnd(std::span<const std::uint16_t> source)
{
    bool ended = false;
    for (std::size_t i = 0; i < m_positions.size(); ++i) {
        m_positions[i] = ended ? Unused : source[i];
        ended = ended || source[i] == EndOfList;
    }
}

void TitemList::assignFileItems(const std::vector<std::uint16_t> &items)
{
    if (items.size() >= m_positions.size()) {
        std::copy_n(items.begin(), m_positions.size(), m_positions.begin());
        return;
    }
    std::fill(m_positions.begin(), m_positions.end(), Unused);
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!holdsCheckitem(items[i])) {
            m_positions[i] = EndOfList;
            return;
        }
        m_positions[i] = items[i];
    }
}
