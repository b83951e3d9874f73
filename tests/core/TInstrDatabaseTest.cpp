#include "ByteBuilder.h"
#include "TInstrDatabase.h"
#include "TempDir.h"
#include "Thrown.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace ByteBuilder;

namespace {
std::string slots(int count)
{
    std::string out;
    for (int i = 0; i < count; ++i)
        out += checkitem('B', 'M', "item " + std::to_string(i));
    return out;
}

std::string allCleared(std::size_t from = 0)
{
    std::string out;
    for (std::size_t i = from; i < TInstrDatabase::SlotCount; ++i)
        out += clearedCheckitem();
    return out;
}

std::string recordBytes(const TInstr &r)
{
    return std::string(reinterpret_cast<const char *>(&r), sizeof r);
}

TopCodeTable table(std::initializer_list<std::pair<char, const char *>> entries)
{
    TopCodeTable t;
    for (auto [letter, name] : entries)
        t[letter] = TinstStruct{name, letter, false, 1024};
    return t;
}
}

TEST(MasterTable, LoadsWholeRecordsAndIgnoresPartialTrailer)
{
    TempDir dir;
    std::vector<TInstr> table;
    ASSERT_EQ(TInstrDatabase::loadMasterTable(table, dir.write("full.dat", slots(1044))), 0);
    ASSERT_EQ(table.size(), 1044u);
    EXPECT_EQ(table[1043].commandText(), "item 1043");

    ASSERT_EQ(TInstrDatabase::loadMasterTable(table, dir.write("one.dat", slots(1))), 0);
    EXPECT_EQ(table.size(), 1u);

    ASSERT_EQ(TInstrDatabase::loadMasterTable(table, dir.write("fifty.dat", slots(1) + "abcdef")), 0);
    ASSERT_EQ(table.size(), 1u);
    EXPECT_EQ(recordBytes(table[0]), checkitem('B', 'M', "item 0"));

    EXPECT_EQ(TInstrDatabase::loadMasterTable(table, dir / "missing.dat"), -1);
}

TEST(MasterTable, NormalizePadsWithClearedSlotsAndCuts)
{
    TInstrDatabase db;
    db.slots().resize(1);
    db[0].assign('B', 'M', "x");
    db.normalizeSize();
    ASSERT_EQ(db.size(), 1044u);
    EXPECT_EQ(recordBytes(db[1043]), clearedCheckitem());
    db.slots().resize(2000);
    db.normalizeSize();
    EXPECT_EQ(db.size(), 1044u);
}

TEST(MasterTable, SaveWritesEverySlotAsFortyFourBytes)
{
    TempDir dir;
    TInstrDatabase db;
    db[0].assign('C', 'P', "Check the cord");
    db[2].assign(' ', 'M', std::string(50, 'x'));
    ASSERT_EQ(TInstrDatabase::saveMasterTable(db.slots(), dir / "mit.dat"), 0);
    std::string expected = checkitem('C', 'P', "Check the cord") + clearedCheckitem()
        + checkitem(' ', 'M', std::string(41, 'x')) + allCleared(3);
    EXPECT_EQ(TempDir::read(dir / "mit.dat"), expected);
    EXPECT_EQ(expected.size(), 45936u);
    struct stat st {};
    ASSERT_EQ(::stat((dir / "mit.dat").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_EQ(TInstrDatabase::saveMasterTable(db.slots(), dir / "no" / "such" / "mit.dat"), -1);
}

TEST(FreeSlot, ScansFromTheTopEveryTime)
{
    TInstrDatabase db;
    for (auto &slot : db.slots())
        slot.assign('A', 'M', "used");
    EXPECT_EQ(db.findFreeSlot(-1), -1);
    db[5].category = 0; // a record with category 0 counts as free
    db[9].opCode = 0;
    EXPECT_EQ(db.findFreeSlot(-1), 5);
    EXPECT_EQ(db.findFreeSlot(5), 5);
    db[5].assign('A', 'M', "used");
    EXPECT_EQ(db.findFreeSlot(5), 9);
}

class CsvImport : public ::testing::Test {
protected:
    TempDir dir;
    TInstrDatabase db;
};

TEST_F(CsvImport, EachLineFillsTheNextSlotCleaned)
{
    using namespace std::string_literals;
    const struct {
        std::string text;
        std::vector<std::string> records; // then a cleared slot
    } cases[] = {
        {"a,M,lower case\r\n1,M,digit category\nB,P,ctl\x01x\x7f" "y\tz\xe9\nC,S,a, b, c\nno commas here\n"
         "D,only one comma\nE,,empty op\n,L,no category\n",
         {checkitem(' ', 'M', "lower case"), checkitem(' ', 'M', "digit category"), checkitem('B', 'P', "ctl x y\tz "),
          checkitem('C', 'S', "a, b, c"), checkitem(' ', 'L', "no category")}},
        // 4095 characters fill the line; what follows is read as a line of its own.
        {"F,M," + std::string(4091, 'y') + "H,M,rest\n" + "I,M," + std::string(4091, 'z') + "\r\n" // exactly full
             + "J,M," + std::string(5000, 'w') + "\n" // the rest has no commas: skipped
             + "G,M,next\n",
         {checkitem('F', 'M', std::string(41, 'y')), checkitem('H', 'M', "rest"), checkitem('I', 'M', std::string(41, 'z')),
          checkitem('J', 'M', std::string(41, 'w')), checkitem('G', 'M', "next")}},
        // A line ends at its first NUL; the last is a free slot as "export-csv --all" writes it.
        {"B,M,before\0,after\n"s + "C,\0,x\n"s + "D,K,\0\n"s + "E,L,last\n" + "\0,\0,"s + std::string(41, '\xFF') + "\n",
         {checkitem('B', 'M', "before"), checkitem('D', 'K', ""), checkitem('E', 'L', "last")}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.substr(0, 20));
        TInstrDatabase db;
        ASSERT_EQ(db.importText(dir.write("in.csv", c.text)), 0);
        for (std::size_t i = 0; i < c.records.size(); ++i)
            EXPECT_EQ(recordBytes(db[i]), c.records[i]) << i;
        EXPECT_EQ(recordBytes(db[c.records.size()]), clearedCheckitem());
    }
}

TEST_F(CsvImport, FillsFreeSlotsOnlyAndThrowsOnTheFirstParsedLineWithoutOne)
{
    for (auto &slot : db.slots())
        slot.assign('A', 'M', "used");
    EXPECT_EQ(db.importText(dir.write("skip.csv", "nothing to parse\n")), 0); // no parsed line: no overflow
    db[3].clear();
    db[7].clear();
    EXPECT_THROW(db.importText(dir.write("in.csv", "B,M,one\nB,M,two\nB,M,three\n")), TinstListOverflowException);
    EXPECT_EQ(db[3].commandText(), "one");
    EXPECT_EQ(db[7].commandText(), "two");
    EXPECT_EQ(db[4].commandText(), "used");
    EXPECT_THROW(db.importText(dir.write("in.csv", "B,M,x\n")), TinstListOverflowException);
    EXPECT_EQ(db.importText(dir / "missing.csv"), -1);
}

TEST_F(CsvImport, ExportWritesEveryRecordAndReimportDuplicates)
{
    db[0].assign('B', 'M', "1.5\t2, with comma");
    db[1].assign(' ', 'P', "Visual check");
    TInstrDatabase small;
    small.slots().assign(db.slots().begin(), db.slots().begin() + 3);
    ASSERT_EQ(small.exportText(dir / "instList.csv"), 0);
    std::string expected = std::string("B,M,1.5\t2, with comma\n") + " ,P,Visual check\n"
        + std::string("\0,\0,", 4) + std::string(41, '\xFF') + "\n";
    EXPECT_EQ(TempDir::read(dir / "instList.csv"), expected);

    db.slots().resize(2);
    db.normalizeSize();
    ASSERT_EQ(db.exportText(dir / "all.csv"), 0);
    ASSERT_EQ(db.importText(dir / "all.csv"), 0);
    EXPECT_EQ(recordBytes(db[2]), recordBytes(db[0]));
    EXPECT_EQ(recordBytes(db[3]), recordBytes(db[1]));
    // The free slots' lines import nothing: the rest stays cleared.
    for (std::size_t i = 4; i < db.size(); ++i)
        ASSERT_EQ(recordBytes(db[i]), clearedCheckitem()) << i;
    EXPECT_EQ(db.exportText(dir / "no" / "dir" / "x.csv"), -1);
}

TEST(OpCodeNames, LookUpsNeedTheTableAndKnownLetters)
{
    TInstrDatabase::clearNames();
    TInstr record('B', 'Q', "text");
    auto message = [](char letter) {
        auto e = thrown<std::runtime_error>([letter] { TInstrDatabase::nameOf(letter); });
        return e ? std::string(e->what()) : "no exception";
    };
    EXPECT_EQ(message('M'), "Instruction Names Not Initialized");
    EXPECT_THROW(TInstrDatabase::nameOfRecord(record), std::runtime_error);

    TInstrDatabase::setNames(table({{'M', "M - Measure"}, {'P', "P - Pass/Fail"}}));
    EXPECT_EQ(TInstrDatabase::nameOf('P'), "P - Pass/Fail");
    EXPECT_EQ(message('Q'), "Invalid Op Code");
    EXPECT_EQ(TInstrDatabase::nameOfRecord(record), "M - Measure");
    EXPECT_EQ(recordBytes(record), std::string("BM") + std::string(42, '\0'));
    TInstrDatabase::clearNames();
}

TEST(OpCodeRepair, ReplacesUnknownOpCodesWithTheMarker)
{
    TInstrDatabase db;
    db[0].assign('B', 'M', "known");
    db[1].assign('C', 'Z', "unknown");
    db[2].category = 0;
    db[2].opCode = 'Z'; // category 0 does not exempt an unknown op code
    db[3].category = 'A';
    db[3].opCode = 0; // an empty op code passes
    EXPECT_TRUE(db.repairUnknownOpCodes(table({{'M', "M - Measure"}, {'L', "L - Limits"}})));
    EXPECT_EQ(recordBytes(db[0]), checkitem('B', 'M', "known"));
    EXPECT_EQ(recordBytes(db[1]), checkitem(' ', 'L', "**!!**UNRECOGNIZED OP CODE**!!**         "));
    EXPECT_EQ(recordBytes(db[2]), checkitem(' ', 'L', "**!!**UNRECOGNIZED OP CODE**!!**         "));
    EXPECT_EQ(db[3].opCode, 0);
    EXPECT_FALSE(db.repairUnknownOpCodes(table({{'M', "M"}, {'L', "L"}})));
}
