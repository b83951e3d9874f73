#pragma once
// The frame's data-set containers, as the transfer records take them.
#include "TtransferRecord.h"
#include <string>

struct DataSet {
    TInstrDatabase checkitems;
    TTestProcList checklists;
    std::vector<TuserTester> testers;
    std::vector<Tautosequence> inspections;
};
