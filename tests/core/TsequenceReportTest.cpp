// What the autosequence printout is made of: titles, setting, and one row per
// checkitem with the names the grids show, and its date.
#include "CoreTest.h"
#include "TsequenceReport.h"

TEST(SequenceReport, RowsFollowTheItemsWithNamesAndTabMarksPortAndBaudFollowTheSetting)
{
    TInstrDatabase db;
    TInstrDatabase::setNames({{'M', {"M - Measure", 'M'}}, {'P', {"P - Pass/Fail", 'P'}}});
    db[0].assign('B', 'M', "EB\t0.1");
    db[1].assign('C', 'P', "Plug ok?");
    db[2].assign(' ', 'Z', "Unknown op");
    Tautosequence seq;
    Tautosequence::setTitle(seq.title1, "EARTH BOND");
    Tautosequence::setTitle(seq.title2, "");
    const std::uint16_t items[] = {2, 1, 3, 4, 2000, 0, 1}; // 4 deleted: a cleared slot
    std::copy(std::begin(items), std::end(items), seq.items);
    // Port and baud rate come from the setting word; an invalid word reads as unused.
    for (const auto &[setting, port, baudRate] : {std::tuple{0x0B, 3, 4800}, std::tuple{0x3F, 0, 2400}}) {
        seq.setting = std::uint16_t(setting);
        const TsequenceReport report = TsequenceReport::make(seq, db, {{'B', "Electrical"}}, 0);
        EXPECT_EQ(report.title1 + "|" + report.title2, "EARTH BOND|");
        EXPECT_EQ(std::pair(report.port, report.baudRate), std::pair(port, baudRate)) << setting;
        EXPECT_EQ(report.rows, (std::vector<std::array<std::string, 3>>{
                                   {"C", "P - Pass/Fail", "Plug ok?"},
                                   {"Electrical", "M - Measure", "EB\xBB" "0.1"},
                                   {"", "", "Unknown op"}, // no definition file
                                   {"<empty>", "", ""},
                                   {"", "", ""}})); // not a checkitem number
    }
    TInstrDatabase::clearNames();
    setenv("TZ", "UTC", 1);
    tzset();
    EXPECT_EQ(TsequenceReport::dateText(1804143302), "March 04 2027 - 06:55:02");
}
