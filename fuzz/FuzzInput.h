#pragma once
// The readers under test take file paths: each run writes its input to one
// private file first.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

class FuzzInput {
public:
    static std::filesystem::path write(const std::string &name, const std::uint8_t *data, std::size_t size)
    {
        static const std::filesystem::path folder = makeFolder();
        std::filesystem::path file = folder / name;
        std::ofstream(file, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char *>(data),
                                                                       static_cast<std::streamsize>(size));
        return file;
    }

private:
    static std::filesystem::path makeFolder()
    {
        std::filesystem::path folder = std::filesystem::temp_directory_path() / ("kt930fuzz." + std::to_string(::getpid()));
        std::filesystem::create_directories(folder / "Data");
        return folder;
    }
};
