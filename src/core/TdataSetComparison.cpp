#include "TdataSetComparison.h"
#include "TdataSet.h"
#include "TinstGridText.h"
#include "TitemList.h"
#include "TlistTexts.h"
#include <algorithm>

namespace {
using Kind = TdataSetDifference::Kind;
constexpr const char *None = "(none)";

std::string inQuotes(const std::string &text)
{
    return "\"" + text + "\"";
}

std::string itemsText(std::span<const std::uint16_t> positions)
{
    std::string text;
    for (std::uint16_t item : TitemList::used(positions))
        text += (text.empty() ? "" : " ") + std::to_string(item);
    return text.empty() ? None : text;
}

// Blanks after the command are padding, not text the frame shows.
std::string checkitemText(const TInstr &record, const TopCodeTable &opCodes)
{
    if (record.isFree())
        return None;
    auto opCode = opCodes.find(record.opCode);
    std::string name =
        opCode != opCodes.end() ? inQuotes(opCode->second.name) : std::string("(unknown op code ") + record.opCode + ")";
    std::string command = TinstGridText::command(record);
    command.erase(command.find_last_not_of(' ') + 1);
    return command.empty() ? name : name + " " + command;
}

std::string categoryText(char letter)
{
    return letter == ' ' ? None : std::string(1, letter);
}

std::string testerPortText(std::uint16_t word)
{
    if (!TesterSetting::isValid(word))
        return "setting " + std::to_string(word);
    if (TesterSetting::port(word) == 0)
        return None;
    return "port " + std::to_string(TesterSetting::port(word)) + " at " +
           std::to_string(TesterSetting::baudRate(TesterSetting::baudIndex(word))) + " baud";
}

std::string checklistText(const TTestProc *checklist)
{
    if (!checklist)
        return None;
    std::string text = inQuotes(TlistTexts::trim(checklist->titleText()));
    if (TitemList::count(checklist->items) > 0)
        text += ": " + itemsText(checklist->items);
    return text;
}

std::string categoryName(const TcategoryMap &names, char letter)
{
    auto name = names.find(letter);
    return name == names.end() || name->second.empty() ? None : inQuotes(name->second);
}

template <class T> const T *at(const std::vector<T> &records, std::size_t index)
{
    return index < records.size() ? &records[index] : nullptr;
}
} // namespace

const char *TdataSetDifference::groupName(Kind kind)
{
    static const char *const names[] = {"checkitems", "inspections", "user testers", "checklists", "categories"};
    return names[std::size_t(kind)];
}

const char *TdataSetDifference::kindName(Kind kind)
{
    static const char *const names[] = {"checkitem", "inspection", "tester", "checklist", "category"};
    return names[std::size_t(kind)];
}

TdataSetComparison::TdataSetComparison(const Side &from, const Side &to, const TopCodeTable &opCodes)
{
    compareCheckitems(from.data, to.data, opCodes);
    compareInspections(from.data, to.data);
    compareTesters(from.data, to.data);
    compareChecklists(from.data, to.data);
    if (from.categories && to.categories)
        compareCategories(*from.categories, *to.categories);
}

std::string TdataSetComparison::summary() const
{
    if (same())
        return "No differences";
    const std::size_t total = m_differences.size();
    std::string text = std::to_string(total) + (total == 1 ? " difference (" : " differences (");
    bool first = true;
    for (std::size_t kind = 0; kind < TdataSetDifference::KindCount; ++kind) {
        if (m_counts[kind] == 0)
            continue;
        text += std::string(first ? "" : ", ") + TdataSetDifference::groupName(Kind(kind)) + " " +
                std::to_string(m_counts[kind]);
        first = false;
    }
    return text + ")";
}

void TdataSetComparison::add(Kind kind, int number, std::string place, std::string from, std::string to)
{
    if (from == to)
        return;
    m_differences.push_back({kind, number, std::move(place), std::move(from), std::move(to)});
    ++m_counts[std::size_t(kind)];
}

void TdataSetComparison::compareCheckitems(const TdataSet &from, const TdataSet &to, const TopCodeTable &opCodes)
{
    const std::vector<TInstr> &a = from.checkitems.slots(), &b = to.checkitems.slots();
    static const TInstr freeSlot;
    for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
        const TInstr &left = i < a.size() ? a[i] : freeSlot, &right = i < b.size() ? b[i] : freeSlot;
        const int number = int(i + 1);
        const std::string place = "checkitem " + std::to_string(number);
        add(Kind::Checkitem, number, place, checkitemText(left, opCodes), checkitemText(right, opCodes));
        if (!left.isFree() && !right.isFree())
            add(Kind::Checkitem, number, place + " category", categoryText(left.category),
                categoryText(right.category));
    }
}

void TdataSetComparison::compareSequence(Kind kind, int number, const std::string &place, const Tautosequence *from,
                                         const Tautosequence *to)
{
    if (!from || !to) {
        auto text = [](const Tautosequence *sequence) {
            return sequence ? inQuotes(TlistTexts::sequenceText(*sequence)) : None;
        };
        add(kind, number, place, text(from), text(to));
        return;
    }
    auto title = [](const char(&text)[19]) { return inQuotes(TlistTexts::trim(Tautosequence::titleText(text))); };
    add(kind, number, place + " title 1", title(from->title1), title(to->title1));
    add(kind, number, place + " title 2", title(from->title2), title(to->title2));
    add(kind, number, place + " items", itemsText(from->items), itemsText(to->items));
    add(kind, number, place + " tester port", testerPortText(from->setting), testerPortText(to->setting));
}

void TdataSetComparison::compareInspections(const TdataSet &from, const TdataSet &to)
{
    for (std::size_t i = 0; i < std::max(from.inspections.size(), to.inspections.size()); ++i) {
        const int number = int(i + 1);
        compareSequence(Kind::Inspection, number, "inspection " + std::to_string(number), at(from.inspections, i),
                        at(to.inspections, i));
    }
}

void TdataSetComparison::compareTesters(const TdataSet &from, const TdataSet &to)
{
    for (std::size_t t = 0; t < std::max(from.userTesters.size(), to.userTesters.size()); ++t) {
        const TuserTester *left = at(from.userTesters, t), *right = at(to.userTesters, t);
        const int number = int(t + 1);
        const std::string place = "tester " + std::to_string(number);
        auto name = [](const TuserTester *tester) { return tester ? inQuotes(TlistTexts::trim(tester->name)) : None; };
        add(Kind::Tester, number, place + (left && right ? " name" : ""), name(left), name(right));
        if (!left || !right)
            continue;
        for (std::size_t s = 0; s < std::max(left->sequences.size(), right->sequences.size()); ++s)
            compareSequence(Kind::Tester, number, place + " sequence " + std::to_string(s + 1), at(left->sequences, s),
                            at(right->sequences, s));
    }
}

void TdataSetComparison::compareChecklists(const TdataSet &from, const TdataSet &to)
{
    const std::vector<TTestProc> &a = from.checklists.items, &b = to.checklists.items;
    for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
        const int number = int(i + 1);
        add(Kind::Checklist, number, "checklist " + std::to_string(number), checklistText(at(a, i)),
            checklistText(at(b, i)));
    }
}

void TdataSetComparison::compareCategories(const TcategoryMap &from, const TcategoryMap &to)
{
    for (char letter = 'A'; letter <= 'Z'; ++letter)
        add(Kind::Category, letter, std::string("category ") + letter, categoryName(from, letter),
            categoryName(to, letter));
}
