#include "TlastTransfer.h"
#include "AtomicFile.h"
#include "RegularFile.h"
#include "TdataFolderLock.h"
#include "TimeStamp.h"

std::string TlastTransfer::linkText(int method, int serialPort, const std::array<int, 4> &ip)
{
    switch (method) {
    case 0:
        return "USB";
    case 1:
        return "Ethernet " + std::to_string(ip[0] & 0xFF) + "." + std::to_string(ip[1] & 0xFF) + "." +
               std::to_string(ip[2] & 0xFF) + "." + std::to_string(ip[3] & 0xFF);
    default:
        return "serial COM" + std::to_string(serialPort);
    }
}

bool TlastTransfer::record(const std::filesystem::path &dataFolder, const std::string &action, const std::string &link)
{
    // Under the folder's lock, like every write of ours there, so that no loader takes
    // its temporary for a leftover.
    const TdataFolderLock lock(dataFolder);
    if (!lock.locked())
        return false;
    const std::string line = localTimeText(std::time(nullptr)) + "\t" + action + "\t" + link + "\n";
    return writeFileAtomically(dataFolder / FileName, line) == AtomicWriteResult::Ok;
}

std::optional<TlastTransfer> TlastTransfer::read(const std::filesystem::path &dataFolder)
{
    std::ifstream in;
    std::string line;
    // The file may come with someone else's folder: one that is not ours is not read.
    if (!openRegularFile(in, dataFolder / FileName) || !small(in) || !std::getline(in, line) || line.size() > 200)
        return std::nullopt;
    const std::size_t first = line.find('\t'), second = line.find('\t', first + 1);
    if (first == std::string::npos || second == std::string::npos)
        return std::nullopt;
    return TlastTransfer{line.substr(0, first), line.substr(first + 1, second - first - 1), line.substr(second + 1)};
}
