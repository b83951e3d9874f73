// CSV import into a table that is nearly full, so overflow is reached too.
#include "FuzzInput.h"
#include "TInstrDatabase.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    TInstrDatabase db;
    for (std::size_t i = 0; i + 3 < db.size(); ++i)
        db[i].assign('A', 'K', "used");
    try {
        db.importText(FuzzInput::write("in.csv", data, size));
    } catch (const TinstListOverflowException &) {
    }
    for (std::size_t i = 0; i < db.size(); ++i)
        if (!db[i].isFree() && db[i].command[41] != 0)
            __builtin_trap(); // every stored record ends in 0
    return 0;
}
