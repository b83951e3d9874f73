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
