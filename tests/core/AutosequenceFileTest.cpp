#include "CoreTest.h"
#include "autosequenceFileStructs.h"

TEST(AsqRead, ReadsHeaderRecordsAndDeclaredItemCountsOrSaysWhyNotAndEachShortReadHasItsOwnNumber)
{
    TempDir dir;
    std::vector<std::uint16_t> thirty(30);
    std::iota(thirty.begin(), thirty.end(), 1);
    const std::string whole = asqHeader("Physical Inspections", "", 2)
        + asqRecord("Cord check", "Class I", 0x0B, {5, 0x1234, 0}) + asqRecord("Long", "", 0, thirty);
    TautosequenceFile asq;
    ASSERT_EQ(asq.read(dir.write("x.asq", whole + "trailing")), 0);
    EXPECT_EQ(asq.title() + "|" + asq.subtitle() + "|" + std::to_string(asq.records.size()), "Physical Inspections||2");
    EXPECT_EQ(asq.serialize(), whole);

    EXPECT_EQ(asq.read(dir / "missing.asq"), -1);
    EXPECT_EQ(asq.read(dir.write("empty.asq", asqHeader("User Tester Autosequences", "Bench", 0))), -2);
    EXPECT_TRUE(asq.records.empty());
    EXPECT_EQ(asq.subtitle(), "Bench");

    // Cut points and the read that comes up short there.
    const std::string small = asqHeader("T", "S", 1) + asqRecord("a", "b", 3, {7, 0});
    const std::pair<std::size_t, int> cuts[] = {
        {0, 1}, {63, 1}, {100, 2}, {129, 3}, {130 + 10, 4}, {130 + 64 + 63, 5},
        {130 + 128 + 1, 6}, {130 + 131, 7}, {130 + 132 + 3, 8},
    };
    for (auto [length, which] : cuts) {
        auto e = thrown<TInvalidRead>([&] { asq.parse(small.substr(0, length)); });
        EXPECT_EQ(e ? e->which : 0, which) << "cut at " << length;
    }
    EXPECT_EQ(asq.parse(small), 0);
}

TEST(AsqWrite, RecomputesCountsAndWritesTheLayoutOrRefusesAndKeepsTheTarget)
{
    TempDir dir;
    TautosequenceFile asq;
    asq.setTitle("User Tester Autosequences");
    asq.setSubtitle(std::string(80, 'n'));
    asq.header.recordCount = 99;
    auto &record = asq.records.emplace_back();
    std::strcpy(record.title1, "Earth bond");
    record.setting = 0x13;
    record.itemCount = 7;
    record.items = {0x0102, 0xFFFF};
    ASSERT_EQ(asq.write(dir / "out.asq"), 0);
    EXPECT_EQ(TempDir::read(dir / "out.asq"), asqHeader("User Tester Autosequences", std::string(63, 'n'), 1)
                                                  + asqRecord("Earth bond", "", 0x13, {0x0102, 0xFFFF}));

    auto file = dir.write("ro.asq", "keep me");
    ::chmod(file.c_str(), 0444);
    EXPECT_EQ(asq.write(file), -1);
    EXPECT_EQ(TempDir::read(file), "keep me");
    EXPECT_EQ(asq.write(dir / "none" / "x.asq"), -1);
}

TEST(AsqReferences, ListsEachRecordUsingTheNumberOnce)
{
    TempDir dir;
    auto file = dir.write("x.asq", asqHeader("Physical Inspections", "", 3)
                                      + asqRecord("Cord", "Class I", 0, {4, 9, 4, 0})
                                      + asqRecord("Plug", "", 0, {1, 0})
                                      + asqRecord("Case", "Metal", 0, {0, 0xFFFF, 4}));
    std::vector<std::string> lines;
    EXPECT_TRUE(TautosequenceFile::findReferences(file, 4, lines));
    EXPECT_EQ(lines, (std::vector<std::string>{"Cord - Class I", "Case - Metal"}));

    lines.clear();
    EXPECT_FALSE(TautosequenceFile::findReferences(file, 77, lines));
    EXPECT_FALSE(TautosequenceFile::findReferences(dir / "gone.asq", 4, lines));
    EXPECT_EQ(lines, (std::vector<std::string>{"Unable to open autosequence file - " + (dir / "gone.asq").string()}));
}

TEST(AsqRead, HugeFileWithOneDeclaredRecordStaysSmall)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer reserves more address space than the limit allows";
#else
    TempDir dir;
    auto file = dir.write("inspection.asq", asqHeader("Physical Inspections", "", 1) + asqRecord("Cord", "", 0, {0}));
    std::filesystem::resize_file(file, std::uintmax_t(1) << 30); // sparse: costs no disk
    TautosequenceFile asq;
    EXPECT_EXIT(exitWithinAddressCap([&] { return asq.read(file) == 0 && asq.records.size() == 1; }),
                ::testing::ExitedWithCode(0), "");
#endif
}
