#include "ByteBuilder.h"
#include "TempDir.h"
#include "Thrown.h"
#include "autosequenceFileStructs.h"
#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace ByteBuilder;

TEST(AsqRead, ReadsHeaderRecordsAndDeclaredItemCountsOrSaysWhyNot)
{
    TempDir dir;
    std::vector<std::uint16_t> thirty(30);
    for (int i = 0; i < 30; ++i)
        thirty[i] = static_cast<std::uint16_t>(i + 1);
    auto file = dir.write("x.asq", asqHeader("Physical Inspections", "", 2)
                                      + asqRecord("Cord check", "Class I", 0x0B, {5, 0x1234, 0})
                                      + asqRecord("Long", "", 0, thirty) + "trailing");
    TautosequenceFile asq;
    ASSERT_EQ(asq.read(file), 0);
    EXPECT_EQ(asq.title(), "Physical Inspections");
    EXPECT_EQ(asq.subtitle(), "");
    EXPECT_EQ(asq.header.recordCount, 2);
    ASSERT_EQ(asq.records.size(), 2u);
    EXPECT_STREQ(asq.records[0].title1, "Cord check");
    EXPECT_STREQ(asq.records[0].title2, "Class I");
    EXPECT_EQ(asq.records[0].setting, 0x0B);
    EXPECT_EQ(asq.records[0].items, (std::vector<std::uint16_t>{5, 0x1234, 0}));
    EXPECT_EQ(asq.records[1].itemCount, 30);
    EXPECT_EQ(asq.records[1].items, thirty);

    EXPECT_EQ(asq.read(dir / "missing.asq"), -1);
    std::string empty = asqHeader("User Tester Autosequences", "Bench", 0);
    ASSERT_EQ(empty.size(), 130u);
    EXPECT_EQ(asq.read(dir.write("empty.asq", empty)), -2);
    EXPECT_TRUE(asq.records.empty());
    EXPECT_EQ(asq.subtitle(), "Bench");
}

TEST(AsqRead, EachShortReadHasItsOwnNumber)
{
    std::string whole = asqHeader("T", "S", 1) + asqRecord("a", "b", 3, {7, 0});
    // Cut points and the read that comes up short there.
    const std::pair<std::size_t, int> cuts[] = {
        {0, 1}, {63, 1}, {100, 2}, {129, 3}, {130 + 10, 4}, {130 + 64 + 63, 5},
        {130 + 128 + 1, 6}, {130 + 131, 7}, {130 + 132 + 3, 8},
    };
    std::set<int> seen;
    for (auto [length, which] : cuts) {
        TautosequenceFile asq;
        auto e = thrown<TInvalidRead>([&] { asq.parse(whole.substr(0, length)); });
        EXPECT_EQ(e ? e->which : 0, which) << "cut at " << length;
        seen.insert(e ? e->which : 0);
    }
    EXPECT_EQ(seen.size(), 8u);
    TautosequenceFile asq;
    EXPECT_EQ(asq.parse(whole), 0);
}

TEST(AsqWrite, RecomputesCountsAndWritesTheLayout)
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
    std::string expected = asqHeader("User Tester Autosequences", std::string(63, 'n'), 1)
        + asqRecord("Earth bond", "", 0x13, {0x0102, 0xFFFF});
    EXPECT_EQ(TempDir::read(dir / "out.asq"), expected);
    EXPECT_EQ(asq.header.recordCount, 1);
    EXPECT_EQ(asq.records[0].itemCount, 2);
    struct stat st {};
    ASSERT_EQ(::stat((dir / "out.asq").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
}

TEST(AsqWrite, RefusesReadOnlyTargetAndMissingFolder)
{
    TempDir dir;
    auto file = dir.write("ro.asq", "keep me");
    ::chmod(file.c_str(), 0444);
    TautosequenceFile asq;
    asq.records.emplace_back();
    EXPECT_EQ(asq.write(file), -1);
    EXPECT_EQ(TempDir::read(file), "keep me");
    EXPECT_EQ(asq.write(dir / "none" / "x.asq"), -1);
    // No temporary file is left behind.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
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
    EXPECT_TRUE(lines.empty());

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
    auto readUnderALimit = [&file] {
        // Far less than the file: reading it whole would fail.
        const rlimit limit{256u << 20, 256u << 20};
        ::setrlimit(RLIMIT_AS, &limit);
        TautosequenceFile asq;
        try {
            std::_Exit(asq.read(file) == 0 && asq.records.size() == 1 ? 0 : 1);
        } catch (...) {
            std::_Exit(2);
        }
    };
    EXPECT_EXIT(readUnderALimit(), ::testing::ExitedWithCode(0), "");
#endif
}
