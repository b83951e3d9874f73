#include "TsyncCommStruct.h"
#include "TransferImages.h"

void TsyncCommStruct::copyInto(TInstrDatabase &db) const
{
    // The first 1044 slots of the image, as a download copies them.
    TransferImages::unpackCheckitems(area, db);
}
