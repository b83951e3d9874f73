#include "FullDataSet.h"
#include "TdataSet.h"
#include <string>

namespace {
// The op codes of the demo definitions, so the editors show every checkitem.
constexpr char OpCodes[] = "PKCDEILMRT";

std::string numbered(const char *what, int n, int variant)
{
    return what + std::to_string(n) + "/" + std::to_string(variant);
}

void fillSequence(Tautosequence &sequence, int n, int variant)
{
    Tautosequence::setTitle(sequence.title1, numbered("Seq ", n, variant));
    Tautosequence::setTitle(sequence.title2, numbered("Sub ", n * 3, variant));
    for (int k = 0; k < Tautosequence::ItemCount; ++k)
        sequence.items[k] = static_cast<std::uint16_t>(1 + (n * 7 + k * 11 + variant) % FullDataSet::Checkitems);
    sequence.setting = static_cast<std::uint16_t>((n + variant) % 32);
}
}

void FullDataSet::fill(TdataSet &set, int variant)
{
    set.checkitems.clearAll();
    for (int i = 0; i < Checkitems; ++i)
        set.checkitems[static_cast<std::size_t>(i)].assign(
            char('A' + (i + variant) % 26), OpCodes[(i + variant) % 10],
            numbered("Checkitem step ", i, variant) + "\t" + std::to_string((i * 13 + variant) % 600));

    set.inspections.assign(TdataSet::DefaultInspectionCount, Tautosequence());
    for (int n = 0; n < TdataSet::DefaultInspectionCount; ++n)
        fillSequence(set.inspections[static_cast<std::size_t>(n)], n, variant);

    set.userTesters.assign(TdataSet::UserTesterCount, TuserTester());
    for (int t = 0; t < TdataSet::UserTesterCount; ++t) {
        TuserTester &tester = set.userTesters[static_cast<std::size_t>(t)];
        tester.name = numbered("Full tester ", t + 1, variant);
        tester.sequences.assign(TdataSet::SequencesPerTester, Tautosequence());
        for (int s = 0; s < TdataSet::SequencesPerTester; ++s)
            fillSequence(tester.sequences[static_cast<std::size_t>(s)], 100 + t * 12 + s, variant);
    }

    set.checklists.items.assign(TTestProcList::DefaultCount, TTestProc());
    for (int n = 0; n < int(set.checklists.items.size()); ++n) {
        TTestProc &list = set.checklists.items[static_cast<std::size_t>(n)];
        std::string title = numbered("Checklist ", n, variant);
        title.resize(41, ' ');
        std::copy(title.begin(), title.end(), list.title);
        list.title[41] = 0;
        for (int k = 0; k < TEST_PROCEDURE::ItemCount; ++k)
            list.items[k] = static_cast<std::uint16_t>(1 + (n * 5 + k * 3 + variant) % Checkitems);
        list.setting = static_cast<std::uint16_t>(n + variant);
    }
}
