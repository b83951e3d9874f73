#include "TchecklistReport.h"
#include "TautosequenceCall.h"
#include "TitemList.h"
#include "TlistTexts.h"
#include "TsequenceReport.h"

TchecklistReport TchecklistReport::make(const TTestProc &checklist, const TInstrDatabase &db,
                                        const TcategoryMap &descriptors, const std::vector<Tautosequence> &inspections,
                                        const std::vector<TuserTester> &testers, std::time_t when)
{
    TchecklistReport report;
    report.date = TsequenceReport::dateText(when);
    report.title = TlistTexts::trim(checklist.titleText());
    for (std::uint16_t item : TitemList::used(checklist.items)) {
        std::array<std::string, 3> cells = TsequenceReport::rowOf(db, item - 1u, descriptors);
        if (item - 1u < db.size() && db[item - 1u].opCode == 'A')
            cells[2] = TautosequenceCall::runsText(db[item - 1u].commandText(), inspections, testers);
        report.rows.push_back(cells);
    }
    return report;
}
