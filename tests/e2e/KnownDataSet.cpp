#include "KnownDataSet.h"
#include "ByteBuilder.h"
#include "TransferImages.h"

using namespace ByteBuilder;

namespace {
constexpr std::size_t Checkitems = 1044, Checklists = 500, Sequences = 18 + 5 * 12, Testers = 5;
constexpr char DefinedOpCodes[] = "ACDEIKLMPRT"; // those of the demo Data/*.in files

std::string padded(const std::string &text, std::size_t width)
{
    return (text + std::string(width, ' ')).substr(0, width);
}

// An item list of `count` items from slot offset on: 0 ends it, 0xFFFF fills after it.
void putItems(std::string &image, std::size_t offset, std::size_t n, std::size_t count, std::size_t slots, int seed)
{
    for (std::size_t k = 0; k < slots; ++k)
        putWord(image, offset + 2 * k,
                k < count    ? std::uint16_t(1 + (n * 31 + k * 7 + std::size_t(seed)) % 1044)
                : k == count ? 0
                             : 0xFFFF);
}

template <typename T> void appendBytes(std::string &out, const T &record)
{
    out.append(reinterpret_cast<const char *>(&record), sizeof record);
}
}

KnownImages KnownImages::fromMemoryFile(const std::string &bytes)
{
    return bytes.size() != 45936 + 7128 + 132000
               ? KnownImages{}
               : KnownImages{bytes.substr(0, 45936), bytes.substr(45936, 7128), bytes.substr(45936 + 7128)};
}

KnownImages KnownDataSet::images(int seed)
{
    const std::size_t z = std::size_t(seed);
    KnownImages images{std::string(45936, '\0'), std::string(7128, '\0'), std::string(132000, '\0')};
    // Checkitems: 44 bytes a slot; category, op code, 41 characters and a 0. Every
    // fifth slot is free: the cleared record, two zeros and 0xFF bytes.
    for (std::size_t i = 0; i < Checkitems; ++i) {
        const std::size_t at = i * 44;
        if (i % 5 == 4) {
            putText(images.checkitems, at + 2, std::string(42, '\xFF'));
            continue;
        }
        images.checkitems[at] = char('A' + (i + z) % 26);
        images.checkitems[at + 1] = DefinedOpCodes[(i * 7 + z) % (sizeof DefinedOpCodes - 1)];
        putText(images.checkitems, at + 2,
                "Check " + std::to_string(i) + "/" + std::to_string(seed) + "\t" + std::to_string(i * 13 % 997));
    }
    // Checklists: 264 bytes a slot; title 41 blanks-padded characters and a 0,
    // 96 items, setting; the last 28 bytes stay 0.
    for (std::size_t n = 0; n < Checklists; ++n) {
        const std::size_t at = n * 264;
        putText(images.checklists, at,
                padded("Checklist " + std::to_string(n) + " of set " + std::to_string(seed), 41));
        putItems(images.checklists, at + 42, n, (n + z) % 97, 96, seed);
        putWord(images.checklists, at + 234, std::uint16_t(n * 131 + z));
    }
    // Autosequences: the 18 inspections, then tester t's sequence s at 18 + t * 12 + s;
    // 88 bytes each: two titles of 18 blank-padded characters and a 0, 24 items,
    // setting. Tester names: 20 blank-padded bytes and a 0.
    for (std::size_t k = 0; k < Sequences; ++k) {
        const std::size_t at = k * 88;
        const std::string name = k < 18 ? "Insp " + std::to_string(k)
                                        : "T" + std::to_string((k - 18) / 12) + " seq " + std::to_string((k - 18) % 12);
        putText(images.autosequences, at, padded(name + " s" + std::to_string(seed), 18));
        putText(images.autosequences, at + 19, padded("Sub " + std::to_string(k * 3 + z), 18));
        putItems(images.autosequences, at + 38, k, (k + z) % 25, 24, seed);
        putWord(images.autosequences, at + 86, std::uint16_t((k + z) % 32));
    }
    for (std::size_t t = 0; t < Testers; ++t)
        putText(images.autosequences, 6864 + t * 21,
                padded("Bench tester " + std::to_string(t + 1) + "/" + std::to_string(seed), 20));
    return images;
}

void KnownDataSet::fill(TdataSet &set, const KnownImages &known)
{
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
