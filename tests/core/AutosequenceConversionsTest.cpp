#include "AutosequenceConversions.h"
#include "CoreTest.h"
#include "TitemList.h"

namespace conv = AutosequenceConversions;
using Items = std::vector<std::uint16_t>;

namespace {
Items rule(const Items &source, int positions = 24)
{
    Items out(static_cast<std::size_t>(positions), 0x5555);
    TitemList(out).assignFileItems(source);
    return out;
}

// Items that are not followed by a 0: 0xFFFF fills the rest.
Items unterminated(Items items, std::size_t count = 24)
{
    items.resize(count, 0xFFFF);
    return items;
}

TautosequenceFileStorage record(const std::string &t1, const std::string &t2, std::uint16_t setting, Items items)
{
    TautosequenceFileStorage r;
    std::strncpy(r.title1, t1.c_str(), 63);
    std::strncpy(r.title2, t2.c_str(), 63);
    r.setting = setting;
    r.items = std::move(items);
    r.itemCount = static_cast<std::uint16_t>(r.items.size());
    return r;
}

Tautosequence sequence(const std::string &t1, std::initializer_list<std::uint16_t> items, std::uint16_t setting = 0)
{
    Tautosequence s;
    Tautosequence::setTitle(s.title1, t1);
    Tautosequence::setTitle(s.title2, t1.empty() ? "" : "Class I");
    auto positions24 = positions(items);
    std::copy(positions24.begin(), positions24.end(), s.items);
    s.setting = setting;
    return s;
}
} // namespace

TEST(ItemRule, TerminatorsFillersAndLongRecords)
{
    Items thirty(30);
    for (int i = 0; i < 30; ++i)
        thirty[i] = static_cast<std::uint16_t>(i == 3 ? 0 : 100 + i);
    const std::pair<Items, Items> cases[] = {
        {rule({5, 9}), unterminated({5, 9})},
        {rule({5, 0, 7}), positions({5})},
        {rule({5, 0xFFFF, 7}), positions({5})},
        {rule({}), unterminated({})},
        {rule(thirty), Items(thirty.begin(), thirty.begin() + 24)},
        {rule(Items(100, 3), 96), Items(96, 3)},
        {rule({8, 0}, 96), positions({8}, 96)},
    };
    for (const auto &[got, expected] : cases)
        EXPECT_EQ(got, expected);
}

TEST(InspectionConversion, WritesTwentyFourItemsAnd180ByteRecordsAndReadsThemBackByTheItemRule)
{
    std::vector<Tautosequence> inspections{sequence("Cord check", {4, 5}, 0x0B), sequence("", {})};
    TautosequenceFile file;
    conv::inspectionsToFile(inspections, file);
    const std::string blank(18, ' ');
    EXPECT_EQ(file.serialize(), asqHeader("Physical Inspections", "", 2) +
                                    asqRecord("Cord check        ", "Class I           ", 0x0B, positions({4, 5})) +
                                    asqRecord(blank, blank, 0, positions({})));

    file.records.push_back(record("A title far longer than nineteen", "t2", 0x20, {5, 9}));
    std::vector<Tautosequence> back{Tautosequence()};
    conv::fileToInspections(file, back);
    ASSERT_EQ(back.size(), 3u);
    EXPECT_EQ(bytes(back[0]) + bytes(back[1]) + bytes(back[2]),
              bytes(inspections[0]) + bytes(inspections[1]) +
                  sequenceRecord("A title far longer ", "t2", 0x20, rule({5, 9})));
}

TEST(UserTesterConversion, NameBecomesSubtitleCutTo63AndMissingTestersAreAddedFromTheLastIndex)
{
    TuserTester tester{std::string(70, 'T'), {sequence("One", {1}), sequence("Two", {2, 3})}};
    TautosequenceFile file;
    conv::userTesterToFile(tester, file);
    const std::string expected = asqHeader("User Tester Autosequences", std::string(63, 'T'), 2) +
                                 asqRecord("One               ", "Class I           ", 0, positions({1})) +
                                 asqRecord("Two               ", "Class I           ", 0, positions({2, 3}));
    EXPECT_EQ(file.serialize(), expected);

    TuserTester back = conv::fileToUserTester(file);
    EXPECT_EQ(back.name, std::string(63, 'T'));
    ASSERT_EQ(back.sequences.size(), 2u);
    EXPECT_EQ(bytes(back.sequences[1]), bytes(tester.sequences[1]));

    std::vector<TautosequenceFile> files;
    conv::userTestersToFiles({tester, tester}, files);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[1].serialize(), expected);

    // Fewer than five files add testers from the last index; short files are not padded.
    files.resize(3);
    for (int i = 0; i < 3; ++i) {
        files[i].setSubtitle("Bench " + std::to_string(i));
        files[i].records = {record("s", "", 0, {1, 0})};
    }
    std::vector<TuserTester> testers(1);
    conv::filesToUserTesters(files, testers);
    std::string names;
    for (const TuserTester &tester : testers)
        names += tester.name + "/" + std::to_string(tester.sequences.size()) + " ";
    EXPECT_EQ(names, "Bench 0/1 Bench 1/1 Bench 2/1 USER TESTER #2/12 USER TESTER #3/12 USER TESTER #4/12 ");
    EXPECT_EQ(bytes(testers[3].sequences[11]), sequenceRecord("", "", 0, positions({})));
    conv::filesToUserTesters(std::vector<TautosequenceFile>(7), testers);
    EXPECT_EQ(testers.size(), 5u);
}

// The item rule on 96 positions is checked with the rule itself.
TEST(ChecklistConversion, TitlesItemsAndSettingRoundTrip)
{
    TautosequenceFile file;
    file.records = {record("Annual test of a class I device", "ignored", 0x1234, Items(100, 12)),
                    record("Short", "", 7, {3, 4, 0, 9})};
    TTestProcList list;
    list.makeUnused();
    conv::fileToChecklists(file, list);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list.items[0].titleText() + "|" + std::to_string(list.items[0].setting),
              "Annual test of a class I device|4660");
    EXPECT_EQ(Items(std::begin(list.items[0].items), std::end(list.items[0].items)), Items(96, 12));
    EXPECT_EQ(Items(std::begin(list.items[1].items), std::end(list.items[1].items)), positions({3, 4}, 96));

    list.items.assign(1, TTestProc());
    std::memcpy(list.items[0].title, "Checklist one", 13);
    std::copy_n(positions({8}, 96).begin(), 96, list.items[0].items);
    list.items[0].setting = 2;
    TautosequenceFile out;
    conv::checklistsToFile(list, out);
    EXPECT_EQ(out.serialize(),
              asqHeader("", "", 1) + asqRecord("Checklist one" + std::string(28, ' '), "", 2, positions({8}, 96)));
}
