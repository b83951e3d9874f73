#pragma once
#include <filesystem>
#include <fstream>

// Opens a data file for binary reading, but only a regular file: a folder, a FIFO or
// a device counts as a file that cannot be opened, and none of them is ever opened in
// a way that could block. Links are followed only where the kernel's protected_symlinks
// rule would follow them (see TrustedLinks.h).
bool openRegularFile(std::ifstream &in, const std::filesystem::path &path);

// Whether an opened file is small enough to be one of ours (64 KiB), read no further
// when it is not; the stream is left at its start.
bool small(std::ifstream &in);
