#include "CoreTest.h"
#include "TInstrDatabase.h"

namespace {
std::string slots(int count)
{
    std::string out;
    for (int i = 0; i < count; ++i)
        out += checkitem('B', 'M', "item " + std::to_string(i));
    return out;
}

// The whole table's bytes.
std::string bytes(const std::vector<TInstr> &table)
{
    return std::string(reinterpret_cast<const char *>(table.data()), table.size() * sizeof(TInstr));
}
}

// A load takes whole records and ignores a partial trailer; a save writes every slot, padded
// with cleared ones or cut to 1044.
TEST(MasterTable, LoadsWholeRecordsAndSavesEverySlotAsFortyFourBytes)
{
    TempDir dir;
    std::vector<TInstr> table;
    ASSERT_EQ(TInstrDatabase::loadMasterTable(table, dir.write("full.dat", slots(1044))), 0);
    EXPECT_EQ(bytes(table), slots(1044));
    ASSERT_EQ(TInstrDatabase::loadMasterTable(table, dir.write("fifty.dat", slots(1) + "abcdef")), 0);
    EXPECT_EQ(bytes(table), slots(1));
    EXPECT_EQ(TInstrDatabase::loadMasterTable(table, dir / "missing.dat"), -1);

    TInstrDatabase db;
    db.slots().resize(2000);
    db.normalizeSize();
    EXPECT_EQ(db.size(), 1044u);
    db.slots().resize(1);
    db.normalizeSize();
    db[0].assign('C', 'P', "Check the cord");
    db[2].assign(' ', 'M', std::string(50, 'x'));
    ASSERT_EQ(TInstrDatabase::saveMasterTable(db.slots(), dir / "mit.dat"), 0);
    EXPECT_EQ(TempDir::read(dir / "mit.dat"),
              checkitem('C', 'P', "Check the cord") + clearedCheckitem() + checkitem(' ', 'M', std::string(41, 'x'))
                  + clearedSlots(1041));
    EXPECT_EQ(TInstrDatabase::saveMasterTable(db.slots(), dir / "no" / "such" / "mit.dat"), -1);
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
        std::string text, records; // then cleared slots
    } cases[] = {
        {"a,M,lower case\r\n1,M,digit category\nB,P,ctl\x01x\x7f"
         "y\tz\xe9\nC,S,a, b, c\nno commas here\n"
         "D,only one comma\nE,,empty op\n,L,no category\n",
         checkitem(' ', 'M', "lower case") + checkitem(' ', 'M', "digit category") +
             checkitem('B', 'P', "ctl x y\tz ") + checkitem('C', 'S', "a, b, c") + checkitem(' ', 'L', "no category")},
        // 4095 characters fill the line; what follows is read as a line of its own.
        {"F,M," + std::string(4091, 'y') + "H,M,rest\n" + "I,M," + std::string(4091, 'z') + "\r\n" // exactly full
             + "J,M," + std::string(5000, 'w') + "\n" // the rest has no commas: skipped
             + "G,M,next\n",
         checkitem('F', 'M', std::string(41, 'y')) + checkitem('H', 'M', "rest") +
             checkitem('I', 'M', std::string(41, 'z')) + checkitem('J', 'M', std::string(41, 'w')) +
             checkitem('G', 'M', "next")},
        // A line ends at its first NUL; the last is a free slot as "export-csv --all" writes it.
        {"B,M,before\0,after\n"s + "C,\0,x\n"s + "D,K,\0\n"s + "E,L,last\n" + "\0,\0,"s + std::string(41, '\xFF') +
             "\n",
         checkitem('B', 'M', "before") + checkitem('D', 'K', "") + checkitem('E', 'L', "last")},
    };
    for (const auto &c : cases) {
        TInstrDatabase db;
        ASSERT_EQ(db.importText(dir.write("in.csv", c.text)), 0);
        EXPECT_EQ(bytes(db.slots()), c.records + clearedSlots(1044 - c.records.size() / 44)) << c.text.substr(0, 20);
    }
}

// A free slot is found from the top every time; category 0 or op code 0 makes a slot free.
TEST_F(CsvImport, FillsFreeSlotsOnlyAndThrowsOnTheFirstParsedLineWithoutOne)
{
    db.slots().assign(1044, TInstr('A', 'M', "used"));
    EXPECT_EQ(db.findFreeSlot(-1), -1);
    EXPECT_EQ(db.importText(dir.write("skip.csv", "nothing to parse\n")), 0); // no parsed line: no overflow
    db[3].category = 0;
    db[7].opCode = 0;
    EXPECT_EQ(db.findFreeSlot(3), 3);
    EXPECT_THROW(db.importText(dir.write("in.csv", "B,M,one\nB,M,two\nB,M,three\n")), TinstListOverflowException);
    EXPECT_EQ(db[3].commandText() + db[4].commandText() + db[7].commandText(), "oneusedtwo");
    EXPECT_THROW(db.importText(dir.write("in.csv", "B,M,x\n")), TinstListOverflowException);
    EXPECT_EQ(db.importText(dir / "missing.csv"), -1);
}

TEST_F(CsvImport, ExportWritesEveryRecord)
{
    db[0].assign('B', 'M', "1.5\t2, with comma");
    db[1].assign(' ', 'P', "Visual check");
    ASSERT_EQ(db.exportText(dir / "all.csv"), 0);
    const std::string freeLine = std::string("\0,\0,", 4) + std::string(41, '\xFF') + "\n";
    std::string expected = "B,M,1.5\t2, with comma\n ,P,Visual check\n";
    for (int i = 2; i < 1044; ++i)
        expected += freeLine;
    EXPECT_EQ(TempDir::read(dir / "all.csv"), expected); // its import is the last case of the import table
    EXPECT_EQ(db.exportText(dir / "no" / "dir" / "x.csv"), -1);
}

// Unknown op codes become the marker (category 0 does not exempt one; an empty one passes).
TEST(OpCodeNames, UnknownOpCodesAreRepairedAndNamesNeedKnownLetters)
{
    TInstrDatabase db;
    db[0].assign('B', 'M', "known");
    db[1].assign('C', 'Z', "unknown");
    db[2].category = 0;
    db[2].opCode = 'Z';
    db[3].category = 'A';
    db[3].opCode = 0;
    EXPECT_TRUE(db.repairUnknownOpCodes({{'M', {"M - Measure", 'M'}}, {'L', {"L - Limits", 'L'}}}));
    const std::string marker = checkitem(' ', 'L', "**!!**UNRECOGNIZED OP CODE**!!**         ");
    EXPECT_EQ(bytes(db.slots()).substr(0, 4 * 44),
              checkitem('B', 'M', "known") + marker + marker + std::string("A\0", 2) + std::string(42, '\xFF'));
    EXPECT_FALSE(db.repairUnknownOpCodes({{'M', {"M", 'M'}}, {'L', {"L", 'L'}}}));

    // A record of an unknown one becomes an empty measure.
    TInstrDatabase::setNames({{'M', {"M - Measure", 'M'}}, {'P', {"P - Pass/Fail", 'P'}}});
    EXPECT_EQ(TInstrDatabase::nameOf('P'), "P - Pass/Fail");
    EXPECT_THROW(TInstrDatabase::nameOf('Q'), std::runtime_error);
    TInstr record('B', 'Q', "text");
    EXPECT_EQ(TInstrDatabase::nameOfRecord(record), "M - Measure");
    EXPECT_EQ(bytes({record}), std::string("BM") + std::string(42, '\0'));
    TInstrDatabase::clearNames();
    EXPECT_THROW(TInstrDatabase::nameOf('M'), std::runtime_error);
}
