#pragma once
// What the core tests share: temporary folders, byte builders, recorded messages, and
// whole-value views of records, folders and address-space limits.
#include "ByteBuilder.h"
#include "RecordingMessageSink.h"
#include "TempDir.h"
#include "Thrown.h"
#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <optional>
#include <set>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace ByteBuilder;
using Messages = std::vector<Message>;

// A record's bytes as they sit in memory.
template <typename R> std::string bytes(const R &record)
{
    return std::string(reinterpret_cast<const char *>(&record), sizeof record);
}

inline std::string clearedSlots(std::size_t count)
{
    std::string out;
    while (count--)
        out += clearedCheckitem();
    return out;
}

inline unsigned modeOf(const fs::path &path)
{
    struct stat st {};
    EXPECT_EQ(::lstat(path.c_str(), &st), 0) << path;
    return st.st_mode & 07777;
}

// Every entry below folder, links not followed: "name=content", "name->target", "name/" or
// "name|" (a FIFO); the content of .asq files is left out.
inline std::string tree(const fs::path &folder)
{
    std::set<std::string> entries;
    for (const auto &e : fs::recursive_directory_iterator(folder)) {
        const std::string name = e.path().lexically_relative(folder).string();
        entries.insert(e.is_symlink() ? name + "->" + fs::read_symlink(e.path()).string()
                           : e.is_directory()                ? name + "/"
                           : e.is_fifo()                     ? name + "|"
                           : e.path().extension() == ".asq" ? name
                                                             : name + "=" + TempDir::read(e.path()));
    }
    std::string out;
    for (const std::string &entry : entries)
        out += entry + " ";
    return out;
}

// In a forked child: caps the address space 256 MiB above what the process uses, then
// exits 0 when check passes (a throw fails too). Reading a 1 GiB file whole would fail under the cap.
inline void exitWithinAddressCap(const std::function<bool()> &check)
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t cap = pages * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(256) << 20);
    const rlimit limit{cap, cap};
    setrlimit(RLIMIT_AS, &limit);
    std::_Exit(check() ? 0 : 1);
}
