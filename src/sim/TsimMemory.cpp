#include "TsimMemory.h"
#include "AtomicFile.h"
#include "MessageSink.h"
#include "TdataSet.h"
#include "TransferImages.h"
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
    TransferImages::packCheckitems(data.checkitems, image(Area::Checkitems).data());
    TransferImages::packAutosequences(data.inspections, data.userTesters, image(Area::Autosequences).data());
    TransferImages::packChecklists(data.checklists, image(Area::Checklists).data());
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
