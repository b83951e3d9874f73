#pragma once
// Reads a text file line by line as a fixed line buffer of `limit` characters
// does: a line ends at "\n" or "\r\n" (the line end is not part of the line);
// a longer line is cut after `limit` characters and its rest is read as the
// next line. The 8-bit text of a line ends at its first NUL.
#include <cstddef>
#include <istream>
#include <string>

class TtextLineReader {
public:
    TtextLineReader(std::istream &in, std::size_t limit) : m_in(in), m_limit(limit) {}
    // False at the end of the file (nothing left to read).
    bool next(std::string &line);

private:
    // After a full buffer: takes a "\n" or "\r\n" that follows, so that a line
    // of exactly `limit` characters is not followed by an empty one.
    bool takeLineEnd();

    std::istream &m_in;
    std::size_t m_limit;
};
