#pragma once
// The master checkitem table: exactly 1044 TInstr slots once loaded. A checkitem
// is known by its slot number (index + 1), so slot order is its identity.
#include "AtomicFile.h"
#include "TInstr.h"
#include "TinstStruct.h"
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <vector>

struct TinstListOverflowException : std::runtime_error {
    TinstListOverflowException() : std::runtime_error("Checkitem list overflow") {}
};

// What an import of CSV lines left out.
struct TcsvImportReport {
    std::size_t lines = 0;     // lines read
    std::size_t malformed = 0; // not "category,op code,command"
    struct Unknown {
        std::size_t line; // from 1
        char opCode;
    };
    std::vector<Unknown> unknownOpCodes; // lines whose op code no definition file knows
};

class TInstrDatabase {
public:
    static constexpr std::size_t SlotCount = 1044;
    static constexpr std::size_t EditableSlots = 250; // the editors work on slots 0..249

    TInstrDatabase(); // 1044 cleared slots

    std::vector<TInstr> &slots() { return m_slots; }
    const std::vector<TInstr> &slots() const { return m_slots; }
    TInstr &operator[](std::size_t i) { return m_slots[i]; }
    const TInstr &operator[](std::size_t i) const { return m_slots[i]; }
    std::size_t size() const { return m_slots.size(); }

    // Pads with cleared slots or cuts to exactly 1044.
    void normalizeSize();
    void clearAll();

    // Index of the first free slot or -1. previous == -1 resets the cursor.
    int findFreeSlot(int previous);

    // CSV lines "c,o,text". 0 ok, -1 cannot open; throws TinstListOverflowException
    // when no slot is free (checkitems placed before stay). With known op codes, a line
    // whose op code is not among them is left out; report says what was left out.
    int importText(const std::filesystem::path &path, const TopCodeTable *known = nullptr,
                   TcsvImportReport *report = nullptr);
    // One line per record of this table, "%c,%c,%s\n". 0 ok, -1 cannot create.
    int exportText(const std::filesystem::path &path) const { return exportText(m_slots, path); }
    // The same for any list of records the caller wants written; with in-place writes
    // allowed, a pipe or terminal as path gets the lines (an export to standard output).
    static int exportText(const std::vector<TInstr> &records, const std::filesystem::path &path,
                          InPlaceWrites inPlace = InPlaceWrites::Refused);

    // mit.dat: 44-byte records, no header. load: 0 ok, -1 cannot open (the vector
    // holds as many whole records as the file has, at most limit; a partial trailer is ignored).
    static int loadMasterTable(std::vector<TInstr> &table, const std::filesystem::path &path,
                               std::size_t limit = std::numeric_limits<std::size_t>::max());
    // 0 ok, -1 cannot create, -2 short write (the old file stays intact).
    static int saveMasterTable(const std::vector<TInstr> &table, const std::filesystem::path &path);

    // Process-wide op-code table used by the name look-ups.
    static void setNames(const TopCodeTable &table);
    static void clearNames();
    // Throws std::runtime_error "Instruction Names Not Initialized" / "Invalid Op Code".
    static std::string nameOf(char opCode);
    // Repairs a record with an unknown op code (lowest letter, command zeroed).
    static std::string nameOfRecord(TInstr &record);

    // Whether a record may carry opCode: an empty one, or one a definition file knows.
    static bool isKnownOpCode(const TopCodeTable &table, char opCode);
    // Slot numbers (from 1) of the records whose op code is not known; such records
    // must not reach the analyzer.
    std::vector<std::size_t> slotsWithUnknownOpCodes(const TopCodeTable &table) const;

    // Repairs every used slot whose op code is not in the table (blank category,
    // lowest letter, marker text). Returns true when any slot was repaired.
    bool repairUnknownOpCodes(const TopCodeTable &table);

private:
    std::vector<TInstr> m_slots;
    int m_cursor = 0;
};
