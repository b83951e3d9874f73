#pragma once
// What deleting a checkitem would leave dangling: the sequences of the data folder's
// .asq files (autosequences, user testers, checklists) that use its number.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

struct TcheckitemReferences {
    // False when the folder holds no .asq file: nothing can refer to the checkitem.
    bool autosequenceFilesFound = false;
    // Per file with a user, in name order: "title - subtitle" of the file, then
    // "  title1 - title2" of each sequence that uses the number. Windows-1252 bytes.
    std::vector<std::string> lines;

    // Files that cannot be read are passed over.
    static TcheckitemReferences find(std::uint16_t number, const std::filesystem::path &dataFolder);
};
