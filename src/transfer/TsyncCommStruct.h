#pragma once
// The sync record: the 40-byte settings part and 16 chunks of 4224 bytes.
#include "TcommSettings.h"
#include "TInstrDatabase.h"

#pragma pack(push, 1)
struct TsyncCommStruct {
    static constexpr std::size_t ChunkSize = 4224;
    static constexpr std::size_t ChunkCount = 16;
    TcommSettings settings;
    std::uint8_t area[ChunkSize * ChunkCount];

    TsyncCommStruct() : area{} { settings.kind = 1; }
    // The first 1044 slots of the received image replace the database.
    void copyInto(TInstrDatabase &db) const;
};
#pragma pack(pop)
static_assert(sizeof(TsyncCommStruct) == 40 + 67584);
