#include "TextLineReader.h"

bool TtextLineReader::next(std::string &line)
{
    line.clear();
    bool any = false;
    bool ended = false;
    std::istream::int_type c;
    while ((c = m_in.get()) != std::istream::traits_type::eof()) {
        any = true;
        if (c == '\n') {
            ended = true;
            break;
        }
        // One character more than the limit is kept so that a "\r" before the
        // line feed can still be recognised and removed.
        if (line.size() <= m_limit)
            line.push_back(static_cast<char>(c));
    }
    if (ended && !line.empty() && line.back() == '\r')
        line.pop_back();
    if (line.size() > m_limit)
        line.resize(m_limit);
    return any;
}
