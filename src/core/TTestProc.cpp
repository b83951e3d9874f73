#include "TTestProc.h"
#include "TitemList.h"
#include <cstring>

namespace {
const char UnusedTitle[] = "(UNUSED)                                 ";
static_assert(sizeof UnusedTitle == 42);
} // namespace

void TTestProc::blank()
{
    std::memset(title, ' ', 41);
    title[41] = 0;
    TitemList(items).clear();
    setting = 0;
}

void TTestProc::makeUnused()
{
    blank();
    std::memcpy(title, UnusedTitle, 42);
}

bool TTestProc::isUnused() const
{
    return std::memcmp(title, UnusedTitle, 42) == 0;
}

std::string TTestProc::titleText() const
{
    return std::string(title, strnlen(title, 42));
}

void TTestProc::setTitle(const std::string &text)
{
    for (std::size_t i = 0; i < 41; ++i) {
        const unsigned char c = i < text.size() ? static_cast<unsigned char>(text[i]) : ' ';
        title[i] = (c < 32 || c == 127) ? ' ' : static_cast<char>(c);
    }
    title[41] = 0;
}

void TTestProc::assignFromSource(const TEST_PROCEDURE &source)
{
    std::size_t length = strnlen(source.title, 41);
    for (std::size_t i = 0; i < 41; ++i) {
        unsigned char c = i < length ? static_cast<unsigned char>(source.title[i]) : ' ';
        title[i] = (c < 32 || c == 127) ? ' ' : static_cast<char>(c);
    }
    title[41] = 0;
    TitemList(items).assignUpToEnd(source.items);
    setting = source.setting;
}

void TTestProcList::makeUnused()
{
    items.assign(DefaultCount, TTestProc());
    for (auto &item : items)
        item.makeUnused();
}

TTestProc *TTestProcList::at(std::size_t index)
{
    return index < DefaultCount && index < items.size() ? &items[index] : nullptr;
}

const TTestProc *TTestProcList::at(std::size_t index) const
{
    return index < DefaultCount && index < items.size() ? &items[index] : nullptr;
}
