#pragma once
// The largest data set the editors work with: 250 checkitems, every physical
// inspection and user tester sequence holding 24 items, 500 checklists of 96 items.
// Each variant gives every text and number another value, so two variants differ
// in every data file.
class TdataSet;

namespace FullDataSet {
constexpr int Checkitems = 250;
void fill(TdataSet &set, int variant);
}
