#pragma once
#include <filesystem>
#include <string_view>

// Writes a whole file through a temporary file in the same folder and a rename,
// so a crash or a full disk never leaves a half-written data file.
// - A symbolic link is followed only where the kernel's protected_symlinks rule
//   would follow it (see TrustedLinks.h): the file it names is replaced, the link
//   stays. A link planted by another user is refused.
// - An existing target that is not a regular file (a folder, a FIFO, a socket, a
//   device) is refused and never opened, unless in-place writes are allowed: then a
//   FIFO, terminal or device gets the bytes itself (an export to a pipe or the
//   terminal), and what cannot be opened for writing (a folder) is still refused.
// - A target that exists and is not writable is refused.
// - A replaced file keeps its mode, owner and group (as far as the process may
//   set them); a new file gets owner read/write permission.
enum class AtomicWriteResult { Ok = 0, CannotCreate = -1, ShortWrite = -2 };
enum class InPlaceWrites { Refused, Allowed };
AtomicWriteResult writeFileAtomically(const std::filesystem::path &requested, std::string_view bytes,
                                      InPlaceWrites inPlace = InPlaceWrites::Refused);

// The two halves of writeFileAtomically, for saves of several files that must
// all land together: stageFile writes and flushes the new content under a
// temporary name beside the resolved target (temp stays empty where the bytes
// went in place, into a FIFO or device); commitStagedFile renames it over the
// target, discardStagedFile removes it.
struct TstagedFile {
    std::filesystem::path temp;
    std::filesystem::path target;
};
AtomicWriteResult stageFile(const std::filesystem::path &requested, std::string_view bytes, TstagedFile &staged,
                            InPlaceWrites inPlace = InPlaceWrites::Refused);
bool commitStagedFile(const TstagedFile &staged);
void discardStagedFile(const TstagedFile &staged);

// Flushes a folder's entries, so renames in it survive a power cut.
bool syncFolder(const std::filesystem::path &folder);
