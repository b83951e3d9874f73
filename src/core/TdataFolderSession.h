#pragma once
#include <filesystem>
#include <string>

// Marks a data folder as open in one program for as long as the object lives: an
// exclusive flock on Data/.session, whose file holds the holder's process number.
// A second program on the same folder learns who has it; the saves themselves
// stay serialised by TdataFolderLock, this only lets the user know.
class TdataFolderSession {
public:
    static constexpr const char *FileName = ".session";

    // Never waits. A folder that does not exist, or whose session file cannot be
    // opened, is not in use as far as we can tell.
    explicit TdataFolderSession(const std::filesystem::path &dataFolder);
    ~TdataFolderSession();
    TdataFolderSession(const TdataFolderSession &) = delete;
    TdataFolderSession &operator=(const TdataFolderSession &) = delete;

    bool inUse() const { return m_inUse; }
    // The process that has the folder, 0 when it did not say (yet).
    long holder() const { return m_holder; }

private:
    int m_fd = -1;
    bool m_inUse = false;
    long m_holder = 0;
};
