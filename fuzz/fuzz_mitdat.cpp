#include "FuzzInput.h"
#include "TInstrDatabase.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::vector<TInstr> slots;
    TInstrDatabase::loadMasterTable(slots, FuzzInput::write("mit.dat", data, size));
    TInstrDatabase db;
    db.slots() = slots;
    db.normalizeSize();
    for (std::size_t i = 0; i < db.size(); ++i)
        (void)db[i].commandText();
    return 0;
}
