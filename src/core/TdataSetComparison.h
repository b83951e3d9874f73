#pragma once
// What differs between two data sets (the PC's and an analyzer's or another
// folder's), in the words the frame shows them with. Every text here is 8-bit
// Windows-1252 as the data set holds it, tabs of a command shown as 0xBB.
//
// Lines, in the order checkitems, inspections, user testers, checklists, categories:
//   checkitem 39: "L - Meas. w Limits" EB»0»0.1»0»5 -> "K - OK Prompt" Switch the analyzer OFF
//   checkitem 40: (none) -> "M - Measure" ...          (a free slot is "(none)")
//   checkitem 41 category: A -> B                      (" " is shown as "(none)")
//   inspection 4 title 1: "EARTH BOND" -> "(UNUSED)"   (also title 2, items, tester port)
//   tester 2 name: "PAT" -> "PAT 2"
//   tester 2 sequence 5 items: 12 15 16 -> 12 16
//   checklist 7: "MONTHLY": 3 4 -> "MONTHLY": 3
//   category B: "Cord sets" -> (none)                  (only when both sides have names)
// A record that only one side has ("inspection 19") reads "(none)" on the other.
#include "CategoryDescriptors.h"
#include "TinstStruct.h"
#include <array>
#include <string>
#include <vector>

class TdataSet;
struct Tautosequence;

struct TdataSetDifference {
    enum class Kind { Checkitem, Inspection, Tester, Checklist, Category };
    static constexpr std::size_t KindCount = 5;

    Kind kind;
    int number;        // the checkitem, inspection, tester or checklist number from 1; a category's letter
    std::string place; // "checkitem 39", "inspection 4 title 1", "tester 2 sequence 5 items"
    std::string from;  // the first side as the frame shows it, "(none)" where it has nothing
    std::string to;    // the second side, likewise

    std::string line() const { return place + ": " + from + " -> " + to; }
    // "checkitems", "inspections", "user testers", "checklists", "categories".
    static const char *groupName(Kind kind);
    static const char *kindName(Kind kind); // "checkitem", ..., "category"
};

class TdataSetComparison {
public:
    // One side: its data set and, when it has them, its category names (an analyzer has none).
    struct Side {
        const TdataSet &data;
        const TcategoryMap *categories = nullptr;
    };

    // Compares from with to at once. Op codes are named from opCodes (the PC's
    // definition files); a letter it lacks reads "(unknown op code X)".
    TdataSetComparison(const Side &from, const Side &to, const TopCodeTable &opCodes);

    const std::vector<TdataSetDifference> &differences() const { return m_differences; }
    bool same() const { return m_differences.empty(); }
    int count(TdataSetDifference::Kind kind) const { return m_counts[std::size_t(kind)]; }
    // "No differences", or "3 differences (checkitems 1, inspections 2)" naming the
    // kinds that have any.
    std::string summary() const;

private:
    void add(TdataSetDifference::Kind kind, int number, std::string place, std::string from, std::string to);
    void compareCheckitems(const TdataSet &from, const TdataSet &to, const TopCodeTable &opCodes);
    void compareInspections(const TdataSet &from, const TdataSet &to);
    void compareTesters(const TdataSet &from, const TdataSet &to);
    void compareChecklists(const TdataSet &from, const TdataSet &to);
    void compareCategories(const TcategoryMap &from, const TcategoryMap &to);
    // An autosequence that either side may lack (null).
    void compareSequence(TdataSetDifference::Kind kind, int number, const std::string &place, const Tautosequence *from,
                         const Tautosequence *to);

    std::vector<TdataSetDifference> m_differences;
    std::array<int, TdataSetDifference::KindCount> m_counts{};
};
