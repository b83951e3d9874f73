#pragma once
#include <filesystem>
#include <string>
#include <vector>

// Copies of the data files that a download, a sync, an import or a restore replaced,
// kept in Data/.restore/ (the newest 20), so that such an action can be undone.
struct TrestorePoint {
    int number = 0;     // 1 is the newest
    std::string time;   // "2026-11-23 14:15:03"
    std::string action; // what replaced the files: "download", "sync", "import", "restore 2"
    std::vector<std::string> files;
    std::filesystem::path folder;
};

class TrestorePoints {
public:
    static constexpr std::size_t Kept = 20;
    static constexpr const char *FolderName = ".restore";

    explicit TrestorePoints(std::filesystem::path dataFolder);

    // Copies the named data files (those that exist) before `action` replaces them,
    // and drops the oldest restore points beyond Kept. False with the reason when
    // the copy could not be made.
    bool create(const std::string &action, const std::vector<std::string> &names, std::string &why);
    std::vector<TrestorePoint> list() const;
    // Puts restore point `number` back as one all-or-nothing save, after keeping what
    // it replaces as a new restore point. Takes the folder's lock.
    bool restore(int number, std::string &why);

private:
    std::filesystem::path m_dataFolder;
    std::filesystem::path folder() const { return m_dataFolder / FolderName; }
};
