#pragma once
// Which checkitems a list shows and in which order.
#include "CategoryDescriptors.h"
#include "TInstr.h"
#include <cstdint>
#include <vector>

class Tfilter {
public:
    const std::vector<TInstr> *database = nullptr;      // set only while applying
    const TcategoryMap *categoryDescriptors = nullptr;  // set only while applying
    bool checklistMode = false;
    std::uint8_t sort = 0; // 0 database order, 1/2 number, 3/4 category, 5/6 op code
    std::vector<char> categorySet;
    std::vector<char> opSet;

    void reset(); // clears the two sets and the two pointers
    void setSort(std::uint8_t value) { sort = value; }
    // Fills out with database indexes (only the first 250 slots are considered).
    void apply(const std::vector<TInstr> &db, std::vector<std::uint32_t> &out,
               const TcategoryMap &descriptors);

private:
    bool less(std::uint32_t a, std::uint32_t b) const;
};
