#pragma once
#include <array>
#include <filesystem>
#include <optional>
#include <string>

// When the data set last went to or came from an analyzer, and over which link: a
// line in Data/.last-transfer, written when a transfer completes.
struct TlastTransfer {
    static constexpr const char *FileName = ".last-transfer";

    std::string time;   // "2026-11-23 14:15:03"
    std::string action; // "download", "upload", "sync"
    std::string link;   // "Ethernet 127.0.0.1", "serial COM3", "USB"

    // The link in words, from the transfer record's method (0 USB, 1 Ethernet, 2 serial).
    static std::string linkText(int method, int serialPort, const std::array<int, 4> &ip);
    // Nothing depends on the record, so a failed write only returns false.
    static bool record(const std::filesystem::path &dataFolder, const std::string &action, const std::string &link);
    // None when no transfer was recorded or the record is not one of ours.
    static std::optional<TlastTransfer> read(const std::filesystem::path &dataFolder);
};
