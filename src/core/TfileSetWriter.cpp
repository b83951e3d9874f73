#include "TfileSetWriter.h"
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
constexpr std::size_t TempSuffixLength = 4 + 6; // ".tmp" and six letters

// A record entry may only rename a temporary of ours over the file it was made for.
bool isTemporaryOf(const fs::path &temp, const fs::path &target)
{
    const std::string prefix = target.filename().string() + ".tmp";
    const std::string name = temp.filename().string();
    return temp.parent_path() == target.parent_path() && name.size() == prefix.size() + 6
        && name.compare(0, prefix.size(), prefix) == 0;
}

std::string readIntent(const fs::path &path)
{
    struct stat st {};
    // Only our own record, and only a small one: anything else is not a save of ours.
    if (::lstat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode) || st.st_uid != ::geteuid() || st.st_size > 65536)
        return {};
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void syncFolders(const std::vector<fs::path> &files)
{
    std::set<fs::path> folders;
    for (const fs::path &file : files)
        folders.insert(file.parent_path());
    for (const fs::path &folder : folders)
        syncFolder(folder);
}
}

TfileSetWriter::TfileSetWriter(fs::path dataFolder) : m_folder(std::move(dataFolder)) {}

TfileSetWriter::~TfileSetWriter()
{
    for (const TstagedFile &staged : m_staged)
        discardStagedFile(staged);
}

AtomicWriteResult TfileSetWriter::stage(const fs::path &target, std::string_view bytes)
{
    TstagedFile staged;
    const AtomicWriteResult result = stageFile(target, bytes, staged);
    if (result == AtomicWriteResult::Ok && !staged.temp.empty())
        m_staged.push_back(staged);
    return result;
}

std::vector<fs::path> TfileSetWriter::targets() const
{
    std::vector<fs::path> result;
    for (const TstagedFile &staged : m_staged)
        result.push_back(staged.target);
    return result;
}

bool TfileSetWriter::commit()
{
    if (m_staged.empty())
        return true;
    const fs::path intent = m_folder / IntentFile;
    if (m_staged.size() > 1) {
        std::string record;
        for (const TstagedFile &staged : m_staged) {
            record += staged.temp.string();
            record.push_back('\0');
            record += staged.target.string();
            record.push_back('\0');
        }
        // From here on the save is decided: a loader finishes it.
        if (writeFileAtomically(intent, record) != AtomicWriteResult::Ok)
            return false;
    }
    std::vector<fs::path> done;
    for (const TstagedFile &staged : m_staged) {
        commitStagedFile(staged);
        done.push_back(staged.target);
    }
    m_staged.clear();
    syncFolders(done);
    if (done.size() > 1) {
        ::unlink(intent.c_str());
        syncFolder(m_folder);
    }
    return true;
}

void TfileSetWriter::recover(const fs::path &dataFolder, const std::vector<std::string> &names)
{
    const fs::path intent = dataFolder / IntentFile;
    const std::string record = readIntent(intent);
    std::vector<fs::path> renamed;
    std::size_t at = 0;
    while (at < record.size()) {
        const std::size_t tempEnd = record.find('\0', at);
        const std::size_t targetEnd = tempEnd == std::string::npos ? tempEnd : record.find('\0', tempEnd + 1);
        if (targetEnd == std::string::npos)
            break;
        const fs::path temp = record.substr(at, tempEnd - at);
        const fs::path target = record.substr(tempEnd + 1, targetEnd - tempEnd - 1);
        at = targetEnd + 1;
        struct stat st {};
        if (isTemporaryOf(temp, target) && ::lstat(temp.c_str(), &st) == 0 && S_ISREG(st.st_mode)
            && std::rename(temp.c_str(), target.c_str()) == 0)
            renamed.push_back(target);
    }
    syncFolders(renamed);
    std::error_code ec;
    if (fs::exists(fs::symlink_status(intent, ec))) {
        ::unlink(intent.c_str());
        syncFolder(dataFolder);
    }
    // Temporaries without a record: a save that died before deciding.
    std::vector<std::string> owners = names;
    owners.emplace_back(IntentFile);
    std::vector<fs::path> stale;
    for (fs::directory_iterator it(dataFolder, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        for (const std::string &data : owners)
            if (name.size() == data.size() + TempSuffixLength && isTemporaryOf(it->path(), dataFolder / data))
                stale.push_back(it->path());
    }
    for (const fs::path &path : stale)
        fs::remove(path, ec);
}

// A copy, not a hard link: a file restored by hand with cp is rewritten in place,
// and would change the kept bytes with it.
bool keepCopyOf(const fs::path &file, const fs::path &copy)
{
    struct stat st {};
    if (::stat(file.c_str(), &st) != 0 || !S_ISREG(st.st_mode))
        return false;
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return false;
    const std::string bytes(std::istreambuf_iterator<char>(in), {});
    return writeFileAtomically(copy, bytes) == AtomicWriteResult::Ok;
}
