#pragma once
#include <filesystem>
#include <string_view>

// Writes a whole file through a temporary file in the same folder and a rename,
// so a crash or a full disk never leaves a half-written data file. A target that
// exists and is not writable is refused. New files get owner read/write permission.
enum class AtomicWriteResult { Ok = 0, CannotCreate = -1, ShortWrite = -2 };
AtomicWriteResult writeFileAtomically(const std::filesystem::path &target, std::string_view bytes);
