#pragma once
// The simulated analyzer's memory: the three transfer images, kept in one file
// (checkitems, autosequences, checklists, back to back: 185064 bytes).
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

class TsimMemory {
public:
    enum class Area { Checkitems, Autosequences, Checklists };
    static constexpr int AreaCount = 3;

    TsimMemory();

    static std::size_t blockCount(Area area);
    static std::size_t areaSize(Area area);
    static std::size_t fileSize();

    std::vector<std::uint8_t> &image(Area area) { return m_images.at(static_cast<std::size_t>(area)); }
    const std::vector<std::uint8_t> &image(Area area) const { return m_images.at(static_cast<std::size_t>(area)); }

    // Packs the data set of an application folder (load messages go to stderr).
    void fillFromAppDir(const std::filesystem::path &appDir);
    // False (with why) when the file cannot be read or has the wrong size.
    bool load(const std::filesystem::path &file, std::string &why);
    // Whole file through a temporary and a rename; false when it failed.
    bool save(const std::filesystem::path &file) const;

private:
    std::array<std::vector<std::uint8_t>, AreaCount> m_images;
};
