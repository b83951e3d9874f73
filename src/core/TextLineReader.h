#pragma once
// Reads a text file line by line as the data files need it: a line ends at
// "\n" or "\r\n" (the line end is not part of the line), and only the first
// `limit` characters of a longer line are kept.
#include <cstddef>
#include <istream>
#include <string>

class TtextLineReader {
public:
    TtextLineReader(std::istream &in, std::size_t limit) : m_in(in), m_limit(limit) {}
    // False at the end of the file (nothing left to read).
    bool next(std::string &line);

private:
    std::istream &m_in;
    std::size_t m_limit;
};
