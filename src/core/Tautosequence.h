#pragma once
// One autosequence as the editors and the transfer use it: 88 bytes.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#pragma pack(push, 1)
struct Tautosequence {
    static constexpr int ItemCount = 24;
    char title1[19];
    char title2[19];
    std::uint16_t items[ItemCount];
    std::uint16_t setting;

    Tautosequence() { blank(); }

    void blank();      // titles 18 blanks, items 0 then 0xFFFF, setting 0
    void makeUnused(); // "(UNUSED)" title, otherwise blank
    static Tautosequence unused(); // the empty autosequence of defaults and clears
    bool isUnused() const;
    // The checkitems in use: the positions before the first 0 or 0xFFFF.
    int itemCount() const;

    // User text into a title: at most 18 characters, controls to blanks, blank padded.
    static void setTitle(char (&title)[19], const std::string &text);
    static std::string titleText(const char (&title)[19]); // up to the first 0
    // Items as TitemList::assignUpToEnd copies them; setting as is.
    void assignItemsFrom(const Tautosequence &source);
};
#pragma pack(pop)
static_assert(sizeof(Tautosequence) == 88);
static_assert(offsetof(Tautosequence, title2) == 19);
static_assert(offsetof(Tautosequence, items) == 38);
static_assert(offsetof(Tautosequence, setting) == 86);

// Tester setting word: baud index * 8 + port; port 0 always stored as word 0.
namespace TesterSetting {
inline int port(std::uint16_t word) { return word & 7; }
inline int baudIndex(std::uint16_t word) { return (word >> 3) & 3; }
inline bool isValid(std::uint16_t word) { return word <= 31; }
inline std::uint16_t make(int port, int baudIndex) { return port == 0 ? 0 : std::uint16_t(baudIndex * 8 + port); }
int baudRate(int baudIndex); // 2400, 4800, 9600, 19200
}

struct TuserTester {
    static constexpr int DefaultCount = 5;
    static constexpr int SequencesPerTester = 12;
    std::string name;
    std::vector<Tautosequence> sequences; // 12 in a complete tester

    // The list the editors start from: "User Tester #0" to "User Tester #4",
    // each with 12 blank autosequences.
    static std::vector<TuserTester> defaultList();
};
