#pragma once
#include <filesystem>
#include <string_view>

// Writes a whole file through a temporary file in the same folder and a rename,
// so a crash or a full disk never leaves a half-written data file.
// - A symbolic link is followed: the file it names is replaced, the link stays.
// - An existing target that is not a regular file (a FIFO, a terminal, a device)
//   is written in place and never replaced; one that cannot be opened for
//   writing (a folder) is refused.
// - A target that exists and is not writable is refused.
// - A replaced file keeps its mode, owner and group (as far as the process may
//   set them); a new file gets owner read/write permission.
enum class AtomicWriteResult { Ok = 0, CannotCreate = -1, ShortWrite = -2 };
AtomicWriteResult writeFileAtomically(const std::filesystem::path &target, std::string_view bytes);

// The two halves of writeFileAtomically, for saves of several files that must
// all land together: stageFile writes and flushes the new content under a
// temporary name beside the resolved target (temp stays empty where the bytes
// went in place, into a FIFO or device); commitStagedFile renames it over the
// target, discardStagedFile removes it.
struct TstagedFile {
    std::filesystem::path temp;
    std::filesystem::path target;
};
AtomicWriteResult stageFile(const std::filesystem::path &target, std::string_view bytes, TstagedFile &staged);
bool commitStagedFile(const TstagedFile &staged);
void discardStagedFile(const TstagedFile &staged);

// Flushes a folder's entries, so renames in it survive a power cut.
bool syncFolder(const std::filesystem::path &folder);
