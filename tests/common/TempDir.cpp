#include "TempDir.h"
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

TempDir::TempDir()
{
    std::string pattern = (fs::temp_directory_path() / "kt930testXXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TempDir::~TempDir()
{
    std::error_code ec;
    fs::permissions(m_path, fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(m_path, ec);
}

fs::path TempDir::write(const std::string &name, const std::string &bytes) const
{
    fs::path file = m_path / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
    return file;
}

std::string TempDir::read(const fs::path &file)
{
    std::ostringstream s;
    s << std::ifstream(file, std::ios::binary).rdbuf();
    return s.str();
}

std::string TempDir::readDataFiles(const fs::path &folder)
{
    std::string all;
    for (const std::string name : {"mit.dat", "inspection.asq", "usertester1.asq", "usertester2.asq", "usertester3.asq",
                                   "usertester4.asq", "usertester5.asq", "testProc.asq"})
        all += name + (fs::exists(folder / name) ? ": " + read(folder / name) : "-") + "\n";
    return all;
}
