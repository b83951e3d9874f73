#include "autosequenceFileStructs.h"
#include "AtomicFile.h"
#include "RegularFile.h"
#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {
// Numbers of the reads, carried by TInvalidRead.
enum ReadSite {
    ReadTitle = 1, ReadSubtitle, ReadRecordCount,
    ReadTitle1, ReadTitle2, ReadSetting, ReadItemCount, ReadItem
};

// Takes the fields off the stream one by one, so nothing beyond what the
// header declares is ever read.
class TfieldReader {
public:
    explicit TfieldReader(std::istream &in) : m_in(in) {}
    void text(char (&field)[64], int site) { take(field, sizeof field, site); }
    std::uint16_t word(int site)
    {
        unsigned char bytes[2];
        take(bytes, sizeof bytes, site);
        return static_cast<std::uint16_t>(bytes[0] | (bytes[1] << 8));
    }

private:
    void take(void *target, std::size_t count, int site)
    {
        m_in.read(static_cast<char *>(target), static_cast<std::streamsize>(count));
        if (static_cast<std::size_t>(m_in.gcount()) != count)
            throw TInvalidRead(site);
    }
    std::istream &m_in;
};

void putText(std::string &out, const char (&field)[64])
{
    out.append(field, sizeof field);
}

void putWord(std::string &out, std::uint16_t value)
{
    out.push_back(static_cast<char>(value & 0xFF));
    out.push_back(static_cast<char>(value >> 8));
}

// At most 63 characters and a 0, zero padded.
void setField(char (&field)[64], const std::string &text)
{
    std::memset(field, 0, sizeof field);
    std::memcpy(field, text.data(), std::min(text.size(), sizeof field - 1));
}

std::string fieldText(const char (&field)[64])
{
    return std::string(field, strnlen(field, sizeof field));
}
}

int TautosequenceFile::read(const fs::path &path)
{
    std::ifstream in;
    if (!openRegularFile(in, path))
        return -1;
    return read(in);
}

int TautosequenceFile::parse(const std::string &bytes)
{
    std::istringstream in(bytes);
    return read(in);
}

int TautosequenceFile::read(std::istream &in)
{
    records.clear();
    TfieldReader reader(in);
    reader.text(header.title, ReadTitle);
    reader.text(header.subtitle, ReadSubtitle);
    header.recordCount = reader.word(ReadRecordCount);
    if (header.recordCount == 0)
        return -2;
    for (std::uint16_t r = 0; r < header.recordCount; ++r) {
        TautosequenceFileStorage &record = records.emplace_back();
        reader.text(record.title1, ReadTitle1);
        reader.text(record.title2, ReadTitle2);
        record.setting = reader.word(ReadSetting);
        record.itemCount = reader.word(ReadItemCount);
        for (std::uint16_t i = 0; i < record.itemCount; ++i)
            record.items.push_back(reader.word(ReadItem));
    }
    return 0;
}

std::string TautosequenceFile::serialize()
{
    header.recordCount = static_cast<std::uint16_t>(records.size());
    std::string out;
    putText(out, header.title);
    putText(out, header.subtitle);
    putWord(out, header.recordCount);
    for (TautosequenceFileStorage &record : records) {
        record.itemCount = static_cast<std::uint16_t>(record.items.size());
        putText(out, record.title1);
        putText(out, record.title2);
        putWord(out, record.setting);
        putWord(out, record.itemCount);
        for (std::uint16_t item : record.items)
            putWord(out, item);
    }
    return out;
}

int TautosequenceFile::write(const fs::path &path)
{
    switch (writeFileAtomically(path, serialize())) {
    case AtomicWriteResult::Ok:
        return 0;
    case AtomicWriteResult::ShortWrite:
        throw TInvalidWrite();
    default:
        return -1;
    }
}

bool TautosequenceFile::findReferences(const fs::path &path, std::uint16_t number, std::vector<std::string> &result)
{
    TautosequenceFile file;
    int status = -1;
    try {
        status = file.read(path);
    } catch (const TInvalidRead &) {
        status = -1;
    }
    // A file without records counts as unreadable, like a missing one.
    if (status != 0) {
        result.push_back("Unable to open autosequence file - " + path.string());
        return false;
    }
    const std::vector<std::string> names = file.referencesTo(number);
    result.insert(result.end(), names.begin(), names.end());
    return !names.empty();
}

std::vector<std::string> TautosequenceFile::referencesTo(std::uint16_t number) const
{
    std::vector<std::string> names;
    for (const TautosequenceFileStorage &record : records)
        if (std::find(record.items.begin(), record.items.end(), number) != record.items.end())
            names.push_back(fieldText(record.title1) + " - " + fieldText(record.title2));
    return names;
}

void TautosequenceFile::setTitle(const std::string &text)
{
    setField(header.title, text);
}

void TautosequenceFile::setSubtitle(const std::string &text)
{
    setField(header.subtitle, text);
}

std::string TautosequenceFile::title() const
{
    return fieldText(header.title);
}

std::string TautosequenceFile::subtitle() const
{
    return fieldText(header.subtitle);
}
