#pragma once
// The binary autosequence file (.asq): a 130-byte header and R records of
// 132 + 2*N bytes, all integers 16-bit little-endian.
#include <cstdint>
#include <filesystem>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

struct TInvalidRead : std::runtime_error {
    explicit TInvalidRead(int which) : std::runtime_error("Invalid Read " + std::to_string(which)), which(which) {}
    int which; // identifies the read that came up short
};
struct TInvalidWrite : std::runtime_error {
    TInvalidWrite() : std::runtime_error("Invalid Write\n") {}
};

struct TautosequenceFileHeader {
    char title[64] = {};
    char subtitle[64] = {};
    std::uint16_t recordCount = 0;
};

struct TautosequenceFileStorage {
    char title1[64] = {};
    char title2[64] = {};
    std::uint16_t setting = 0;
    std::uint16_t itemCount = 0;
    std::vector<std::uint16_t> items;
};

class TautosequenceFile {
public:
    TautosequenceFileHeader header;
    std::vector<TautosequenceFileStorage> records;

    // 0 ok, -1 cannot open (or not a regular file), -2 record count 0; throws
    // TInvalidRead on a short read.
    int read(const std::filesystem::path &path);
    // The header and the records it declares, taken from the stream and no
    // further; same results and exceptions.
    int read(std::istream &in);
    // Recomputes the counts; 0 ok, -1 cannot create; throws TInvalidWrite.
    int write(const std::filesystem::path &path);
    // The exact bytes write() puts into the file (counts recomputed).
    std::string serialize();
    // Parses bytes as read() does the file; same results and exceptions.
    int parse(const std::string &bytes);

    // Appends "title1 - title2" per record holding the number. False (with
    // "Unable to open autosequence file - <path>") when the file cannot be read.
    static bool findReferences(const std::filesystem::path &path, std::uint16_t number,
                               std::vector<std::string> &result);
    // "title1 - title2" of every record that holds the number anywhere in its items.
    std::vector<std::string> referencesTo(std::uint16_t number) const;

    void setTitle(const std::string &text);
    void setSubtitle(const std::string &text);
    std::string title() const;
    std::string subtitle() const;
};
