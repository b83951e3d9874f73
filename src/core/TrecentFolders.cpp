#include "TrecentFolders.h"
#include "AppDir.h"
#include "AtomicFile.h"
#include "RegularFile.h"
#include <algorithm>

namespace fs = std::filesystem;

fs::path TrecentFolders::normal(const fs::path &folder)
{
    const fs::path path = folder.lexically_normal();
    return path.has_filename() || path == path.root_path() ? path : path.parent_path();
}

TrecentFolders::TrecentFolders(fs::path settingsFolder) : m_settingsFolder(std::move(settingsFolder))
{
    load();
}

fs::path TrecentFolders::file() const
{
    return m_settingsFolder.empty() ? fs::path() : m_settingsFolder / FileName;
}

void TrecentFolders::keep(const fs::path &folder)
{
    const fs::path path = normal(folder);
    if (path.is_absolute() && m_folders.size() < Kept &&
        std::find(m_folders.begin(), m_folders.end(), path) == m_folders.end())
        m_folders.push_back(path);
}

void TrecentFolders::load()
{
    m_folders.clear();
    std::ifstream in;
    if (file().empty() || !openRegularFile(in, file()) || !small(in))
        return;
    std::string line;
    // A list of eight folders is small; a huge file is not ours and is read no further.
    for (std::size_t lines = 0; lines < 1000 && std::getline(in, line); ++lines) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        keep(line);
    }
}

bool TrecentFolders::add(const fs::path &folder, std::string &why)
{
    std::vector<fs::path> older;
    older.swap(m_folders);
    keep(normal(fs::absolute(folder)));
    for (const fs::path &path : older)
        keep(path);
    if (file().empty())
        return true;
    std::string text;
    for (const fs::path &path : m_folders)
        if (path.string().find_first_of("\r\n") == std::string::npos) // a line break cannot be kept in a line
            text += path.string() + "\n";
    std::error_code ec;
    TappDir::createPrivateFolders(m_settingsFolder, ec);
    if (ec) {
        why = "The folder " + m_settingsFolder.string() + " could not be made: " + ec.message() + ".";
        return false;
    }
    if (writeFileAtomically(file(), text) != AtomicWriteResult::Ok) {
        why = "The list of recent folders could not be written to " + file().string() + ".";
        return false;
    }
    return true;
}
