// umockdev reaches the program through its preload library, which must be loaded
// before anything else: a test program started without it starts itself again
// under it (as umockdev-wrapper would), before any test runs. The programs it
// starts inherit it. The library is loaded ahead of the sanitizer's runtime, which
// the sanitizer build is told to accept.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace {
constexpr const char *Preload = "libumockdev-preload.so.0";

bool startAgainUnderPreload()
{
    const char *loaded = std::getenv("LD_PRELOAD");
    if (loaded && std::strstr(loaded, "libumockdev-preload"))
        return true;
    setenv("LD_PRELOAD", loaded && *loaded ? (std::string(Preload) + ":" + loaded).c_str() : Preload, 1);
    const char *asan = std::getenv("ASAN_OPTIONS");
    setenv("ASAN_OPTIONS", (std::string(asan ? asan : "") + ":verify_asan_link_order=0").c_str(), 1);
    std::ifstream cmdline("/proc/self/cmdline", std::ios::binary);
    const std::string all((std::istreambuf_iterator<char>(cmdline)), std::istreambuf_iterator<char>());
    std::vector<std::string> arguments;
    for (std::size_t from = 0; from < all.size(); from = all.find('\0', from) + 1)
        arguments.emplace_back(all.c_str() + from);
    std::vector<char *> argv;
    for (std::string &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    ::execv("/proc/self/exe", argv.data());
    return false;
}

const bool underPreload = startAgainUnderPreload();
}
