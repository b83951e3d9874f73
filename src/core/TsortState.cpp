#include "TsortState.h"

void TsortState::pressHeader(int column)
{
    if (column < 0 || column >= SortableColumns)
        return;
    const auto ascendingNumber = std::uint8_t(2 * column + 1);
    m_number = m_number == ascendingNumber ? std::uint8_t(ascendingNumber + 1) : ascendingNumber;
}
