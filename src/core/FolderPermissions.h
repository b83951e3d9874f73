#pragma once
#include <filesystem>
#include <string>
#include <vector>

// A data folder, or a data file in it, that other users may write lets them plant
// links or replace the data set. One warning for each, naming the path and the fix;
// none for files that do not exist.
std::vector<std::string> permissionWarnings(const std::filesystem::path &dataFolder);
