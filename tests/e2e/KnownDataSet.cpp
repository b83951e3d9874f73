#include "KnownDataSet.h"
#include "ByteBuilder.h"
#include "TransferImages.h"

using ByteBuilder::putText;
using ByteBuilder::putWord;

namespace {
constexpr std::size_t Checkitems = 1044, Checklists = 500, Inspections = 18, Testers = 5, PerTester = 12;
constexpr char DefinedOpCodes[] = "ACDEIKLMPRT"; // those of the demo Data/*.in files

struct CheckitemSeed {
    bool free;
    char category, opCode;
    std::string text;
};

// Item lists end at the first 0, 0xFFFF after; a full list has no 0.
struct RecordSeed {
    std::string title1, title2;
    std::vector<std::uint16_t> items;
    std::uint16_t setting;
};

CheckitemSeed checkitem(std::size_t i, int seed)
{
    if (i % 5 == 4)
        return {true, 0, 0, ""};
    return {false, char('A' + (i + std::size_t(seed)) % 26),
            DefinedOpCodes[(i * 7 + std::size_t(seed)) % (sizeof DefinedOpCodes - 1)],
            "Check " + std::to_string(i) + "/" + std::to_string(seed) + "\t" + std::to_string(i * 13 % 997)};
}

std::vector<std::uint16_t> items(std::size_t n, std::size_t count, int seed)
{
    std::vector<std::uint16_t> list;
    for (std::size_t k = 0; k < count; ++k)
        list.push_back(std::uint16_t(1 + (n * 31 + k * 7 + std::size_t(seed)) % 1044));
    return list;
}

RecordSeed checklist(std::size_t n, int seed)
{
    return {"Checklist " + std::to_string(n) + " of set " + std::to_string(seed), "",
            items(n, (n + std::size_t(seed)) % 97, seed), std::uint16_t(n * 131 + std::size_t(seed))};
}

// k: 0..17 the inspections, then tester t sequence s at 18 + t * 12 + s.
RecordSeed sequence(std::size_t k, int seed)
{
    std::string name = k < Inspections ? "Insp " + std::to_string(k)
                                       : "T" + std::to_string((k - Inspections) / PerTester) + " seq "
            + std::to_string((k - Inspections) % PerTester);
    return {name + " s" + std::to_string(seed), "Sub " + std::to_string(k * 3 + std::size_t(seed)),
            items(k, (k + std::size_t(seed)) % 25, seed), std::uint16_t((k + std::size_t(seed)) % 32)};
}

std::string testerName(std::size_t t, int seed)
{
    return "Bench tester " + std::to_string(t + 1) + "/" + std::to_string(seed);
}

std::string padded(const std::string &text, std::size_t width)
{
    return (text + std::string(width, ' ')).substr(0, width);
}

void putItems(std::string &image, std::size_t offset, const std::vector<std::uint16_t> &list, std::size_t slots)
{
    for (std::size_t k = 0; k < slots; ++k)
        putWord(image, offset + 2 * k, k < list.size() ? list[k] : k == list.size() ? 0 : 0xFFFF);
}

std::size_t sequenceOffset(std::size_t k)
{
    return k < Inspections ? k * 88 : 1584 + (k - Inspections) * 88;
}

template <typename T> void appendBytes(std::string &out, const T &record)
{
    out.append(reinterpret_cast<const char *>(&record), sizeof record);
}
}

KnownImages KnownImages::fromMemoryFile(const std::string &bytes)
{
    if (bytes.size() != 45936 + 7128 + 132000)
        return {};
    return {bytes.substr(0, 45936), bytes.substr(45936, 7128), bytes.substr(45936 + 7128)};
}

KnownImages KnownDataSet::images(int seed)
{
    KnownImages images{std::string(45936, '\0'), std::string(7128, '\0'), std::string(132000, '\0')};
    // Checkitems: 44 bytes a slot; category, op code, 41 characters and a 0.
    // A free slot is the cleared record: two zeros and 0xFF bytes.
    for (std::size_t i = 0; i < Checkitems; ++i) {
        CheckitemSeed item = checkitem(i, seed);
        std::size_t at = i * 44;
        if (item.free) {
            putText(images.checkitems, at + 2, std::string(42, '\xFF'));
            continue;
        }
        images.checkitems[at] = item.category;
        images.checkitems[at + 1] = item.opCode;
        putText(images.checkitems, at + 2, item.text);
    }
    // Checklists: 264 bytes a slot; title 41 blanks-padded characters and a 0,
    // 96 items, setting; the last 28 bytes stay 0.
    for (std::size_t n = 0; n < Checklists; ++n) {
        RecordSeed item = checklist(n, seed);
        std::size_t at = n * 264;
        putText(images.checklists, at, padded(item.title1, 41));
        putItems(images.checklists, at + 42, item.items, 96);
        putWord(images.checklists, at + 234, item.setting);
    }
    // Autosequences: 88 bytes each; two titles of 18 blank-padded characters and a 0,
    // 24 items, setting. Tester names: 20 blank-padded bytes and a 0.
    for (std::size_t k = 0; k < Inspections + Testers * PerTester; ++k) {
        RecordSeed item = sequence(k, seed);
        std::size_t at = sequenceOffset(k);
        putText(images.autosequences, at, padded(item.title1, 18));
        putText(images.autosequences, at + 19, padded(item.title2, 18));
        putItems(images.autosequences, at + 38, item.items, 24);
        putWord(images.autosequences, at + 86, item.setting);
    }
    for (std::size_t t = 0; t < Testers; ++t)
        putText(images.autosequences, 6864 + t * 21, padded(testerName(t, seed), 20));
    return images;
}

void KnownDataSet::fill(TdataSet &set, int seed)
{
    const KnownImages known = images(seed);
    auto bytes = [](const std::string &image) { return reinterpret_cast<const std::uint8_t *>(image.data()); };
    TransferImages::unpackCheckitems(bytes(known.checkitems), set.checkitems);
    TransferImages::unpackChecklists(bytes(known.checklists), set.checklists);
    TransferImages::unpackAutosequences(bytes(known.autosequences), set.inspections, set.userTesters);
}

std::string KnownDataSet::snapshot(const TdataSet &set)
{
    std::string out;
    for (const TInstr &slot : set.checkitems.slots())
        appendBytes(out, slot);
    out += "|";
    for (const TTestProc &list : set.checklists.items)
        appendBytes(out, static_cast<const TEST_PROCEDURE &>(list));
    out += "|";
    for (const Tautosequence &inspection : set.inspections)
        appendBytes(out, inspection);
    for (const TuserTester &tester : set.userTesters) {
        out += "|" + tester.name + "|";
        for (const Tautosequence &sequence : tester.sequences)
            appendBytes(out, sequence);
    }
    return out;
}
