#include "TsyncCommStruct.h"
#include <cstring>

void TsyncCommStruct::copyInto(TInstrDatabase &db) const
{
    auto &slots = db.slots();
    slots.resize(TInstrDatabase::SlotCount);
    for (std::size_t i = 0; i < TInstrDatabase::SlotCount; ++i)
        std::memcpy(static_cast<void *>(&slots[i]), area + i * sizeof(TInstr), sizeof(TInstr));
}
