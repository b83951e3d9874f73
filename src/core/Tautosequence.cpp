#include "Tautosequence.h"
#include "TitemList.h"
#include <cstring>

namespace {
const char UnusedTitle[] = "(UNUSED)          ";
const char BlankTitle[] = "                  ";
}

void Tautosequence::blank()
{
    std::memcpy(title1, BlankTitle, 19);
    std::memcpy(title2, BlankTitle, 19);
    TitemList(items).clear();
    setting = 0;
}

void Tautosequence::makeUnused()
{
    blank();
    std::memcpy(title1, UnusedTitle, 19);
}

Tautosequence Tautosequence::unused()
{
    Tautosequence sequence;
    sequence.makeUnused();
    return sequence;
}

bool Tautosequence::isUnused() const
{
    return std::memcmp(title1, UnusedTitle, 19) == 0 && std::memcmp(title2, BlankTitle, 19) == 0
        && setting == 0 && items[0] == 0;
}

int Tautosequence::itemCount() const
{
    return TitemList::count(items);
}

void Tautosequence::setTitle(char (&title)[19], const std::string &text)
{
    for (std::size_t i = 0; i < 18; ++i) {
        char c = i < text.size() ? text[i] : ' ';
        auto u = static_cast<unsigned char>(c);
        title[i] = (u < 32 || u == 127) ? ' ' : c;
    }
    title[18] = 0;
}

std::string Tautosequence::titleText(const char (&title)[19])
{
    return std::string(title, strnlen(title, 19));
}

void Tautosequence::assignItemsFrom(const Tautosequence &source)
{
    TitemList(items).assignUpToEnd(source.items);
    setting = source.setting;
}

std::vector<TuserTester> TuserTester::defaultList()
{
    std::vector<TuserTester> testers(DefaultCount);
    for (int i = 0; i < DefaultCount; ++i) {
        testers[static_cast<std::size_t>(i)].name = "User Tester #" + std::to_string(i);
        testers[static_cast<std::size_t>(i)].sequences.resize(SequencesPerTester);
    }
    return testers;
}

int TesterSetting::baudRate(int baudIndex)
{
    static const int rates[] = {2400, 4800, 9600, 19200};
    return rates[baudIndex & 3];
}
