#pragma once
// How a checkitem list is sorted, as the filter takes it: 0 database order; 1/2 by
// "No.", 3/4 by "Category", 5/6 by "Op Code"; odd numbers ascending, even descending.
#include <cstdint>

class TsortState {
public:
    static constexpr int SortableColumns = 3; // the commands are not sorted

    constexpr explicit TsortState(std::uint8_t number = 0) : m_number(number) {}
    constexpr std::uint8_t number() const { return m_number; }
    // The sorted column, -1 when the list is in database order.
    constexpr int column() const { return m_number >= 1 && m_number <= 2 * SortableColumns ? (m_number - 1) / 2 : -1; }
    constexpr bool ascending() const { return m_number % 2 == 1; }
    // A press on a column's header: the sorted column turns round, any other sortable
    // column sorts ascending, "Command" leaves the order as it is.
    void pressHeader(int column);

private:
    std::uint8_t m_number;
};
