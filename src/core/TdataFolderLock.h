#pragma once
#include <chrono>
#include <filesystem>
#include <string>

// Serialises the programs that write one data folder: an advisory lock (flock) on
// Data/.lock, held for one load-modify-save and no longer. The holder writes its
// process number into the file so that a waiting program can say who is busy.
// Nested locks of one folder within a process share the first one.
class TdataFolderLock {
public:
    static constexpr std::chrono::milliseconds DefaultWait{10000};
    // A reader creates nothing: without a lock file no save of ours can be under way.
    enum class Mode { Write, Read };

    // Waits up to `wait` for the lock. A folder that does not exist needs no lock.
    explicit TdataFolderLock(const std::filesystem::path &dataFolder, Mode mode = Mode::Write,
                             std::chrono::milliseconds wait = DefaultWait);
    ~TdataFolderLock();
    TdataFolderLock(const TdataFolderLock &) = delete;
    TdataFolderLock &operator=(const TdataFolderLock &) = delete;

    bool locked() const { return m_locked; }
    // Why the lock could not be had, in words for the user.
    const std::string &failure() const { return m_failure; }

    // The waiting time of every lock, for the tests of a busy folder.
    static void setWaitForTests(std::chrono::milliseconds wait);

private:
    std::string m_key;
    bool m_locked = false;
    std::string m_failure;
};
