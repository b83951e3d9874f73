#pragma once
#include "TlastTransfer.h"
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// What a technician wants to know about a data set at a glance: how much is in use,
// when it was last saved and transferred, and what is wrong with it.
struct TdataFolderSummary {
    int checkitems = 0;    // used slots
    int inspections = 0;   // used physical inspections
    int sequences = 0;     // used user tester sequences
    int checklists = 0;    // used checklists
    std::string lastSaved; // the newest data file's time; empty when there is none
    std::optional<TlastTransfer> lastTransfer;
    std::vector<std::string> warnings; // the loaders' messages ("caption: text"), then the folder's warnings

    // Loads the application folder's data set as the frame does, without asking anything.
    static TdataFolderSummary of(const std::filesystem::path &appDir);
};
