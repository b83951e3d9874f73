#include "TsimMemory.h"
#include "AtomicFile.h"
#include "MessageSink.h"
#include "TdataSet.h"
#include "TransferImages.h"
#include <algorithm>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

namespace {
// Load messages of the data set, written where the simulator logs.
class TstderrMessageSink : public MessageSink {
public:
    MsgAnswer show(const Message &message) override
    {
        std::cerr << "kt930sim: " << message.caption << ": " << message.text << "\n";
        return message.buttons == MsgButtons::YesNo ? MsgAnswer::Yes : MsgAnswer::Ok;
    }
};

constexpr TsimMemory::Area areas[] = {TsimMemory::Area::Checkitems, TsimMemory::Area::Autosequences,
                                      TsimMemory::Area::Checklists};
}

TsimMemory::TsimMemory()
{
    for (Area area : areas)
        image(area).assign(areaSize(area), 0);
}

std::size_t TsimMemory::blockCount(Area area)
{
    switch (area) {
    case Area::Checkitems: return TransferImages::CheckitemBlocks;
    case Area::Autosequences: return TransferImages::AutosequenceBlocks;
    case Area::Checklists: return TransferImages::ChecklistBlocks;
    }
    return 0;
}

std::size_t TsimMemory::areaSize(Area area)
{
    return blockCount(area) * TransferImages::BlockSize;
}

std::size_t TsimMemory::fileSize()
{
    return areaSize(Area::Checkitems) + areaSize(Area::Autosequences) + areaSize(Area::Checklists);
}

void TsimMemory::fillFromAppDir(const std::filesystem::path &appDir)
{
    TstderrMessageSink sink;
    TdataSet data(appDir, sink);
    data.loadAll();
    // Packed here from the record layouts rather than through the PC side's packing,
    // so a packing fault on the PC shows up against the simulator.
    for (Area area : areas)
        std::fill(image(area).begin(), image(area).end(), 0);

    std::uint8_t *checkitems = image(Area::Checkitems).data();
    for (std::size_t i = 0; i < TInstrDatabase::SlotCount && i < data.checkitems.size(); ++i)
        std::memcpy(checkitems + i * sizeof(TInstr), &data.checkitems[i], sizeof(TInstr));

    std::uint8_t *checklists = image(Area::Checklists).data();
    for (std::size_t i = 0; i < TransferImages::ChecklistBlocks && i < data.checklists.size(); ++i)
        std::memcpy(checklists + i * TransferImages::ChecklistSlot, &data.checklists.items[i], sizeof(TEST_PROCEDURE));

    std::uint8_t *sequences = image(Area::Autosequences).data();
    for (std::size_t i = 0; i < TransferImages::InspectionCount && i < data.inspections.size(); ++i)
        std::memcpy(sequences + i * sizeof(Tautosequence), &data.inspections[i], sizeof(Tautosequence));
    for (std::size_t t = 0; t < 5 && t < data.userTesters.size(); ++t) {
        const TuserTester &tester = data.userTesters[t];
        for (std::size_t s = 0; s < 12 && s < tester.sequences.size(); ++s)
            std::memcpy(sequences + TransferImages::TesterSequencesOffset + (t * 12 + s) * sizeof(Tautosequence),
                        &tester.sequences[s], sizeof(Tautosequence));
        // The name padded with blanks to 20 bytes, then a 0.
        std::uint8_t *name = sequences + TransferImages::TesterNamesOffset + t * TransferImages::TesterNameWidth;
        std::memset(name, ' ', TransferImages::TesterNameWidth - 1);
        std::memcpy(name, tester.name.data(), std::min<std::size_t>(tester.name.size(), TransferImages::TesterNameWidth - 1));
        name[TransferImages::TesterNameWidth - 1] = 0;
    }
}

bool TsimMemory::load(const std::filesystem::path &file, std::string &why)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        why = "cannot open " + file.string();
        return false;
    }
    std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.size() != fileSize()) {
        why = file.string() + " holds " + std::to_string(bytes.size()) + " bytes, not " + std::to_string(fileSize());
        return false;
    }
    auto from = bytes.begin();
    for (Area area : areas) {
        std::copy(from, from + static_cast<std::ptrdiff_t>(areaSize(area)), image(area).begin());
        from += static_cast<std::ptrdiff_t>(areaSize(area));
    }
    return true;
}

bool TsimMemory::save(const std::filesystem::path &file) const
{
    std::string bytes;
    bytes.reserve(fileSize());
    for (Area area : areas)
        bytes.append(image(area).begin(), image(area).end());
    return writeFileAtomically(file, bytes) == AtomicWriteResult::Ok;
}
