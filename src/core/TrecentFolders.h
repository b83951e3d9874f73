#pragma once
#include <filesystem>
#include <string>
#include <vector>

// The application folders the host worked on last, newest first, kept in the host's
// own settings (one folder a line), so that a data set per customer is a click away.
class TrecentFolders {
public:
    static constexpr std::size_t Kept = 8;
    static constexpr const char *FileName = "recent-folders";

    // An empty settings folder keeps the list in memory only. Reads the file.
    explicit TrecentFolders(std::filesystem::path settingsFolder);

    const std::vector<std::filesystem::path> &folders() const { return m_folders; }
    std::filesystem::path file() const;

    // Blank, relative and repeated lines are dropped, and all after the Kept newest;
    // a missing, unreadable or special file is an empty list.
    void load();
    // Puts the folder first, drops the oldest beyond Kept and writes the file. False
    // with the reason when the file could not be written; the list changes anyway.
    bool add(const std::filesystem::path &folder, std::string &why);
    // How a folder is kept: absolute, "/a/./b/" as "/a/b".
    static std::filesystem::path normal(const std::filesystem::path &folder);

private:
    void keep(const std::filesystem::path &folder);

    std::filesystem::path m_settingsFolder;
    std::vector<std::filesystem::path> m_folders;
};
