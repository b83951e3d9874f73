#pragma once
// A fresh folder below the system temp folder, removed when the test ends.
#include <filesystem>
#include <string>

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    const std::filesystem::path &path() const { return m_path; }
    std::filesystem::path operator/(const std::string &name) const { return m_path / name; }
    // Writes bytes to a file below the folder (creating parent folders).
    std::filesystem::path write(const std::string &name, const std::string &bytes) const;
    static std::string read(const std::filesystem::path &file);
    // Each data file of a data folder by name with its bytes, "-" for a missing one: one value to compare.
    static std::string readDataFiles(const std::filesystem::path &folder);

private:
    std::filesystem::path m_path;
};
