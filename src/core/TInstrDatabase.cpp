#include "TInstrDatabase.h"
#include "AtomicFile.h"
#include "RegularFile.h"
#include "TextLineReader.h"
#include <boost/spirit/include/classic_actor.hpp>
#include <boost/spirit/include/classic_core.hpp>
#include <cstring>
#include <fstream>
#include <mutex>
#include <optional>

namespace fs = std::filesystem;

namespace {
constexpr std::size_t CsvLineLimit = 4095;
const char UnrecognizedMarker[] = "**!!**UNRECOGNIZED OP CODE**!!**          ";

// The name look-ups share one op-code table per process.
std::mutex namesMutex;
std::optional<TopCodeTable> names;

struct TcsvFields {
    std::string category;
    std::string opCode;
    std::string command;
};

// "category,op,command": field 3 is the rest of the line, commas included.
bool parseCsvLine(const std::string &line, TcsvFields &fields)
{
    using namespace boost::spirit::classic;
    const char *first = line.data();
    const char *last = first + line.size();
    return parse(first, last,
                 (*(anychar_p - ','))[assign_a(fields.category)] >> ch_p(',')
                     >> (+(anychar_p - ','))[assign_a(fields.opCode)] >> ch_p(',')
                     >> (*anychar_p)[assign_a(fields.command)])
        .full;
}

// Control characters and anything above '~' become blanks; 0 and tab stay.
void cleanCommand(TInstr &record)
{
    for (char &c : record.command) {
        auto u = static_cast<unsigned char>(c);
        if (u != 0 && u != '\t' && (u < 32 || u > 126))
            c = ' ';
    }
}
}

TInstrDatabase::TInstrDatabase() : m_slots(SlotCount) {}

void TInstrDatabase::normalizeSize()
{
    m_slots.resize(SlotCount);
}

void TInstrDatabase::clearAll()
{
    m_slots.assign(SlotCount, TInstr());
}

int TInstrDatabase::findFreeSlot(int previous)
{
    // The cursor only ever goes back to 0, so every search starts at the top.
    if (previous == -1)
        m_cursor = 0;
    for (auto i = static_cast<std::size_t>(m_cursor); i < m_slots.size(); ++i)
        if (m_slots[i].isFree())
            return static_cast<int>(i);
    return -1;
}

int TInstrDatabase::importText(const fs::path &path, const TopCodeTable *known, TcsvImportReport *report)
{
    std::ifstream in;
    if (!openRegularFile(in, path))
        return -1;
    TcsvImportReport ignored;
    TcsvImportReport &left = report ? *report : ignored;
    TtextLineReader reader(in, CsvLineLimit);
    std::string line;
    int slot = -1;
    while (reader.next(line)) {
        ++left.lines;
        TcsvFields fields;
        if (!parseCsvLine(line, fields)) {
            ++left.malformed;
            continue;
        }
        if (known && !isKnownOpCode(*known, fields.opCode[0])) {
            left.unknownOpCodes.push_back({left.lines, fields.opCode[0]});
            continue;
        }
        char category = fields.category.empty() ? ' ' : fields.category[0];
        if (category < 'A' || category > 'Z')
            category = ' ';
        TInstr record(category, fields.opCode[0], fields.command);
        cleanCommand(record);
        slot = findFreeSlot(slot);
        if (slot < 0)
            throw TinstListOverflowException();
        m_slots[static_cast<std::size_t>(slot)] = record;
    }
    return 0;
}

int TInstrDatabase::exportText(const std::vector<TInstr> &records, const fs::path &path, InPlaceWrites inPlace)
{
    std::string text;
    for (const TInstr &record : records) {
        text.push_back(record.category);
        text.push_back(',');
        text.push_back(record.opCode);
        text.push_back(',');
        text += record.commandText();
        text.push_back('\n');
    }
    return writeFileAtomically(path, text, inPlace) == AtomicWriteResult::Ok ? 0 : -1;
}

int TInstrDatabase::loadMasterTable(std::vector<TInstr> &table, const fs::path &path, std::size_t limit)
{
    std::ifstream in;
    if (!openRegularFile(in, path))
        return -1;
    table.clear();
    TInstr record;
    while (table.size() < limit && in.read(reinterpret_cast<char *>(&record), sizeof record))
        table.push_back(record);
    return 0;
}

int TInstrDatabase::saveMasterTable(const std::vector<TInstr> &table, const fs::path &path)
{
    std::string bytes(reinterpret_cast<const char *>(table.data()), table.size() * sizeof(TInstr));
    switch (writeFileAtomically(path, bytes)) {
    case AtomicWriteResult::Ok:
        return 0;
    case AtomicWriteResult::ShortWrite:
        return -2;
    default:
        return -1;
    }
}

void TInstrDatabase::setNames(const TopCodeTable &table)
{
    std::lock_guard lock(namesMutex);
    names = table;
}

void TInstrDatabase::clearNames()
{
    std::lock_guard lock(namesMutex);
    names.reset();
}

std::string TInstrDatabase::nameOf(char opCode)
{
    std::lock_guard lock(namesMutex);
    if (!names)
        throw std::runtime_error("Instruction Names Not Initialized");
    auto it = names->find(opCode);
    if (it == names->end())
        throw std::runtime_error("Invalid Op Code");
    return it->second.name;
}

std::string TInstrDatabase::nameOfRecord(TInstr &record)
{
    std::lock_guard lock(namesMutex);
    if (!names)
        throw std::runtime_error("Instruction Names Not Initialized");
    auto it = names->find(record.opCode);
    if (it != names->end())
        return it->second.name;
    if (names->empty())
        throw std::runtime_error("Invalid Op Code");
    record.opCode = names->begin()->first;
    std::memset(record.command, 0, sizeof record.command);
    return names->begin()->second.name;
}

bool TInstrDatabase::isKnownOpCode(const TopCodeTable &table, char opCode)
{
    // Only an empty op code passes unchecked.
    return opCode == 0 || table.contains(opCode);
}

std::vector<std::size_t> TInstrDatabase::slotsWithUnknownOpCodes(const TopCodeTable &table) const
{
    std::vector<std::size_t> unknown;
    for (std::size_t i = 0; i < m_slots.size(); ++i)
        if (!isKnownOpCode(table, m_slots[i].opCode))
            unknown.push_back(i + 1);
    return unknown;
}

bool TInstrDatabase::repairUnknownOpCodes(const TopCodeTable &table)
{
    bool repaired = false;
    for (TInstr &record : m_slots) {
        if (isKnownOpCode(table, record.opCode))
            continue;
        if (table.empty())
            throw std::runtime_error("Invalid Op Code");
        record.assign(' ', table.begin()->first, UnrecognizedMarker);
        repaired = true;
    }
    return repaired;
}
