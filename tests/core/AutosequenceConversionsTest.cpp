#include "AutosequenceConversions.h"
#include "ByteBuilder.h"
#include "TitemList.h"
#include <cstring>
#include <gtest/gtest.h>

using namespace ByteBuilder;
namespace conv = AutosequenceConversions;

namespace {
std::vector<std::uint16_t> rule(const std::vector<std::uint16_t> &source, int positions = 24)
{
    std::vector<std::uint16_t> out(static_cast<std::size_t>(positions), 0x5555);
    TitemList(out).assignFileItems(source);
    return out;
}

std::vector<std::uint16_t> itemsOf(const Tautosequence &s)
{
    return {std::begin(s.items), std::end(s.items)};
}

TautosequenceFileStorage record(const std::string &t1, const std::string &t2, std::uint16_t setting,
                                std::vector<std::uint16_t> items)
{
    TautosequenceFileStorage r;
    std::strncpy(r.title1, t1.c_str(), 63);
    std::strncpy(r.title2, t2.c_str(), 63);
    r.setting = setting;
    r.items = std::move(items);
    r.itemCount = static_cast<std::uint16_t>(r.items.size());
    return r;
}

Tautosequence sequence(const std::string &t1, const std::string &t2, std::initializer_list<std::uint16_t> items)
{
    Tautosequence s;
    Tautosequence::setTitle(s.title1, t1);
    Tautosequence::setTitle(s.title2, t2);
    auto positions24 = positions(items);
    std::copy(positions24.begin(), positions24.end(), s.items);
    return s;
}
}

TEST(ItemRule, TerminatorsFillersAndLongRecords)
{
    std::vector<std::uint16_t> unterminated(24, 0xFFFF); // no 0 after the last item
    unterminated[0] = 5;
    unterminated[1] = 9;
    EXPECT_EQ(rule({5, 9}), unterminated);
    EXPECT_EQ(rule({5, 0, 7}), positions({5}));
    EXPECT_EQ(rule({5, 0xFFFF, 7}), positions({5}));
    EXPECT_EQ(rule({}), std::vector<std::uint16_t>(24, 0xFFFF));

    std::vector<std::uint16_t> thirty(30);
    for (int i = 0; i < 30; ++i)
        thirty[i] = static_cast<std::uint16_t>(i == 3 ? 0 : 100 + i);
    EXPECT_EQ(rule(thirty), std::vector<std::uint16_t>(thirty.begin(), thirty.begin() + 24));

    std::vector<std::uint16_t> hundred(100, 3);
    EXPECT_EQ(rule(hundred, 96), std::vector<std::uint16_t>(96, 3));
    EXPECT_EQ(rule({8, 0}, 96), positions({8}, 96));
}

TEST(InspectionConversion, WritesTwentyFourItemsAnd180ByteRecordsAndReadsThemBackByTheItemRule)
{
    std::vector<Tautosequence> inspections{sequence("Cord check", "Class I", {4, 5}), Tautosequence()};
    inspections[0].setting = 0x0B;
    TautosequenceFile file;
    conv::inspectionsToFile(inspections, file);
    EXPECT_EQ(file.serialize(), asqHeader("Physical Inspections", "", 2)
                                    + asqRecord("Cord check        ", "Class I           ", 0x0B, positions({4, 5}))
                                    + asqRecord(std::string(18, ' '), std::string(18, ' '), 0, positions({})));

    file.records.push_back(record("A title far longer than nineteen", "t2", 0x20, {5, 9}));
    std::vector<Tautosequence> back{Tautosequence()};
    conv::fileToInspections(file, back);
    ASSERT_EQ(back.size(), 3u);
    EXPECT_EQ(std::memcmp(&back[0], &inspections[0], sizeof(Tautosequence)), 0);
    EXPECT_EQ(std::memcmp(&back[1], &inspections[1], sizeof(Tautosequence)), 0);
    EXPECT_EQ(std::string(back[2].title1, 19), "A title far longer ");
    EXPECT_EQ(std::string(back[2].title2, 19), std::string("t2") + std::string(17, '\0'));
    EXPECT_EQ(back[2].setting, 0x20);
    EXPECT_EQ(itemsOf(back[2]), rule({5, 9}));
}

TEST(UserTesterConversion, NameBecomesSubtitleCutTo63)
{
    TuserTester tester{std::string(70, 'T'), {sequence("One", "", {1}), sequence("Two", "", {2, 3})}};
    TautosequenceFile file;
    conv::userTesterToFile(tester, file);
    std::string expected = asqHeader("User Tester Autosequences", std::string(63, 'T'), 2)
        + asqRecord("One               ", std::string(18, ' '), 0, positions({1}))
        + asqRecord("Two               ", std::string(18, ' '), 0, positions({2, 3}));
    EXPECT_EQ(file.serialize(), expected);

    TuserTester back = conv::fileToUserTester(file);
    EXPECT_EQ(back.name, std::string(63, 'T'));
    ASSERT_EQ(back.sequences.size(), 2u);
    EXPECT_EQ(itemsOf(back.sequences[1]), positions({2, 3}));

    std::vector<TautosequenceFile> files;
    conv::userTestersToFiles({tester, tester}, files);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[1].serialize(), expected);
}

TEST(UserTesterConversion, FewerThanFiveFilesAddTestersFromTheLastIndex)
{
    std::vector<TautosequenceFile> files(3);
    for (int i = 0; i < 3; ++i) {
        files[i].setSubtitle("Bench " + std::to_string(i));
        files[i].records.push_back(record("s", "", 0, {1, 0}));
    }
    std::vector<TuserTester> testers(1);
    conv::filesToUserTesters(files, testers);
    ASSERT_EQ(testers.size(), 6u);
    const char *names[] = {"Bench 0", "Bench 1", "Bench 2", "USER TESTER #2", "USER TESTER #3", "USER TESTER #4"};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(testers[i].name, names[i]);
    ASSERT_EQ(testers[3].sequences.size(), 12u);
    const Tautosequence &added = testers[3].sequences[11];
    EXPECT_EQ(std::string(added.title1, 19), std::string(19, '\0'));
    EXPECT_EQ(std::string(added.title2, 19), std::string(19, '\0'));
    EXPECT_EQ(added.setting, 0);
    EXPECT_EQ(itemsOf(added), positions({}));
    EXPECT_EQ(testers[0].sequences.size(), 1u); // short files are not padded
    conv::filesToUserTesters(std::vector<TautosequenceFile>(7), testers);
    EXPECT_EQ(testers.size(), 5u);
}

TEST(ChecklistConversion, TitlesItemsAndSettingRoundTrip)
{
    TautosequenceFile file;
    std::vector<std::uint16_t> hundred(100, 12);
    file.records.push_back(record("Annual test of a class I device", "ignored", 0x1234, hundred));
    file.records.push_back(record("Short", "", 7, {3, 4, 0, 9}));
    file.records.push_back(record("Unterminated", "", 0, {3}));
    TTestProcList list;
    list.makeUnused();
    conv::fileToChecklists(file, list);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list.items[0].titleText(), "Annual test of a class I device");
    EXPECT_EQ(list.items[0].setting, 0x1234);
    EXPECT_EQ(std::vector<std::uint16_t>(std::begin(list.items[0].items), std::end(list.items[0].items)),
              std::vector<std::uint16_t>(96, 12));
    EXPECT_EQ(std::vector<std::uint16_t>(std::begin(list.items[1].items), std::end(list.items[1].items)),
              positions({3, 4}, 96));
    EXPECT_EQ(list.items[2].items[0], 3);
    EXPECT_EQ(list.items[2].items[1], 0xFFFF);

    TTestProcList one;
    one.items.resize(1);
    std::memcpy(one.items[0].title, "Checklist one", 13);
    one.items[0].items[0] = 8;
    one.items[0].items[1] = 0;
    one.items[0].setting = 2;
    TautosequenceFile out;
    conv::checklistsToFile(one, out);
    std::string title = "Checklist one" + std::string(28, ' ');
    EXPECT_EQ(out.serialize(), asqHeader("", "", 1) + asqRecord(title, "", 2, positions({8}, 96)));
}
