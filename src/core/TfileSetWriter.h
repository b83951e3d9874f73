#pragma once
#include "AtomicFile.h"
#include <filesystem>
#include <string>
#include <vector>

// Replaces several files of a data folder as one: after a kill at any moment the
// next loader sees all of the old files or all of the new ones.
// Every new file is written and flushed under a temporary name first; then an
// intent record (Data/.saving, itself written atomically) lists the renames;
// then the renames run and the folder is flushed; then the record goes. A loader
// that finds the record finishes the renames (recover()); temporaries without a
// record belong to a save that never reached its record and are removed.
class TfileSetWriter {
public:
    static constexpr const char *IntentFile = ".saving";

    explicit TfileSetWriter(std::filesystem::path dataFolder);
    ~TfileSetWriter(); // whatever was staged and not committed is removed
    TfileSetWriter(const TfileSetWriter &) = delete;
    TfileSetWriter &operator=(const TfileSetWriter &) = delete;

    // Writes the new content of `target` (a file of the data folder, or a link
    // the folder's rules allow) under a temporary name.
    AtomicWriteResult stage(const std::filesystem::path &target, std::string_view bytes);
    bool empty() const { return m_staged.empty(); }
    // The resolved files the commit replaces, in the order they were staged.
    std::vector<std::filesystem::path> targets() const;
    // Puts every staged file in place; false when the intent record could not be written
    // (then nothing was replaced).
    bool commit();

    // Finishes a save that was killed after its intent record was written, and removes
    // the temporaries of the named files that a killed save left without one.
    static void recover(const std::filesystem::path &dataFolder, const std::vector<std::string> &names);

private:
    std::filesystem::path m_folder;
    std::vector<TstagedFile> m_staged;
};

// Keeps the current bytes of the regular file `file` under `copy`, flushed; false
// when the file could not be kept.
bool keepCopyOf(const std::filesystem::path &file, const std::filesystem::path &copy);
