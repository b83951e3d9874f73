#include "TextLineReader.h"

namespace {
using Traits = std::istream::traits_type;
}

bool TtextLineReader::next(std::string &line)
{
    line.clear();
    bool ended = false;
    while (line.size() < m_limit) {
        const Traits::int_type c = m_in.get();
        if (c == Traits::eof())
            break;
        if (c == '\n') {
            ended = true;
            break;
        }
        line.push_back(Traits::to_char_type(c));
    }
    if (!ended && line.size() == m_limit)
        ended = takeLineEnd();
    if (!ended && line.empty())
        return false;
    if (ended && !line.empty() && line.back() == '\r')
        line.pop_back();
    if (const std::size_t nul = line.find('\0'); nul != std::string::npos)
        line.resize(nul);
    return true;
}

bool TtextLineReader::takeLineEnd()
{
    Traits::int_type c = m_in.peek();
    if (c == '\n') {
        m_in.get();
        return true;
    }
    if (c != '\r')
        return false;
    m_in.get();
    if (m_in.peek() == '\n') {
        m_in.get();
        return true;
    }
    m_in.clear();
    m_in.unget();
    return false;
}
