#pragma once
#include <filesystem>
#include <fstream>

// Opens a data file for binary reading, but only a regular file (links are
// followed): a folder opens but reads as empty, and a FIFO or a device would
// block or never end, so both count as files that cannot be opened.
bool openRegularFile(std::ifstream &in, const std::filesystem::path &path);
