#pragma once
// Checklists: 500 records of a title and up to 96 checkitem numbers.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
struct TEST_PROCEDURE {
    static constexpr int ItemCount = 96;
    char title[42];
    std::uint16_t items[ItemCount];
    std::uint16_t setting;
};
#pragma pack(pop)
static_assert(sizeof(TEST_PROCEDURE) == 236);
static_assert(offsetof(TEST_PROCEDURE, items) == 42);
static_assert(offsetof(TEST_PROCEDURE, setting) == 234);

class TTestProc : public TEST_PROCEDURE {
public:
    TTestProc() { blank(); }
    void blank();      // 41 blanks, items 0 then 0xFFFF, setting 0
    void makeUnused(); // "(UNUSED)" padded to 41
    bool isUnused() const;
    std::string titleText() const; // up to the first 0
    // Typed text into the title: at most 41 characters, controls to blanks, blank padded.
    void setTitle(const std::string &text);
    // Cleaning copy used for data from the analyzer.
    void assignFromSource(const TEST_PROCEDURE &source);
};
static_assert(sizeof(TTestProc) == 236);

class TTestProcList {
public:
    static constexpr std::size_t DefaultCount = 500;
    std::vector<TTestProc> items;

    TTestProcList() : items(DefaultCount) {} // a new table holds 500 blank checklists
    void makeUnused();                       // 500 unused checklists
    // The checklist at index, or nullptr for index >= 500 or past the end.
    TTestProc *at(std::size_t index);
    const TTestProc *at(std::size_t index) const;
    std::size_t size() const { return items.size(); }
};
