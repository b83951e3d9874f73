#include "Tfilter.h"
#include "TInstrDatabase.h"
#include "Twindows1252.h"
#include <algorithm>

namespace {
constexpr std::size_t FilterSlots = 250;

bool contains(const std::vector<char> &set, char c)
{
    return std::find(set.begin(), set.end(), c) != set.end();
}

std::string opName(char opCode)
{
    try {
        return TInstrDatabase::nameOf(opCode);
    } catch (const std::exception &) {
        return std::string();
    }
}

// Stable top-down merge sort. Written out because ordering 2 is not a strict
// weak ordering, which std::stable_sort does not allow; a merge sort is well
// defined for any comparison.
template <typename Less>
void mergeSort(std::vector<std::uint32_t> &v, std::vector<std::uint32_t> &scratch, std::size_t begin,
               std::size_t end, const Less &less)
{
    if (end - begin < 2)
        return;
    std::size_t middle = begin + (end - begin) / 2;
    mergeSort(v, scratch, begin, middle, less);
    mergeSort(v, scratch, middle, end, less);
    std::size_t left = begin, right = middle, out = begin;
    while (left < middle && right < end)
        scratch[out++] = less(v[right], v[left]) ? v[right++] : v[left++];
    while (left < middle)
        scratch[out++] = v[left++];
    while (right < end)
        scratch[out++] = v[right++];
    std::copy(scratch.begin() + static_cast<std::ptrdiff_t>(begin), scratch.begin() + static_cast<std::ptrdiff_t>(end),
              v.begin() + static_cast<std::ptrdiff_t>(begin));
}
}

void Tfilter::reset()
{
    categorySet.clear();
    opSet.clear();
    database = nullptr;
    categoryDescriptors = nullptr;
}

void Tfilter::apply(const std::vector<TInstr> &db, std::vector<std::uint32_t> &out, const TcategoryMap &descriptors)
{
    out.clear();
    database = &db;
    categoryDescriptors = &descriptors;

    std::vector<std::uint32_t> passing;
    const std::size_t n = std::min(db.size(), FilterSlots);
    for (std::size_t i = 0; i < n; ++i) {
        const TInstr &record = db[i];
        bool candidate = (record.category >= 'A' && record.category <= 'Z') || record.category == ' ';
        if (!candidate || (!checklistMode && record.opCode == 'A'))
            continue;
        if (!opSet.empty() && !contains(opSet, record.opCode))
            continue;
        if (!categorySet.empty() && !contains(categorySet, record.category))
            continue;
        passing.push_back(static_cast<std::uint32_t>(i));
    }

    if (sort >= 1 && sort <= 6) {
        std::vector<std::uint32_t> scratch(passing.size());
        mergeSort(passing, scratch, 0, passing.size(),
                  [this](std::uint32_t a, std::uint32_t b) { return less(a, b); });
    }
    out = std::move(passing);
    database = nullptr;
    categoryDescriptors = nullptr;
}

bool Tfilter::less(std::uint32_t a, std::uint32_t b) const
{
    const TInstr &ra = (*database)[a];
    const TInstr &rb = (*database)[b];
    auto categoryText = [this](const TInstr &r) {
        return Twindows1252::toUpper(CategoryDescriptors::displayText(*categoryDescriptors, r.category));
    };
    auto byCategory = [&] {
        std::string ca = categoryText(ra), cb = categoryText(rb);
        if (ca != cb)
            return ca < cb;
        return opName(ra.opCode) < opName(rb.opCode);
    };
    auto byOpCode = [&] {
        std::string na = opName(Twindows1252::toUpper(ra.opCode)), nb = opName(Twindows1252::toUpper(rb.opCode));
        if (na < nb) // decided by the raw characters on purpose
            return static_cast<signed char>(ra.opCode) < static_cast<signed char>(rb.opCode);
        if (na == nb)
            return categoryText(ra) < categoryText(rb);
        return false;
    };
    switch (sort) {
    case 1: return a < b;
    case 2: return !(a < b);
    case 3: return byCategory();
    case 4: return !byCategory();
    case 5: return byOpCode();
    case 6: return !byOpCode();
    default: return false;
    }
}
