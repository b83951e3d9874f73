#pragma once
// kt930ctl run as a program on a temporary copy of the demo application folder.
#include "ProgramRun.h"
#include "TempDir.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

struct CliFixture : ::testing::Test {
    CliFixture()
    {
        std::filesystem::create_directories(temp / "app");
        std::filesystem::copy(std::string(KT930_TEST_APPDIR) + "/Data", temp / "app/Data",
                              std::filesystem::copy_options::recursive);
    }
    ProgramRun run(std::vector<std::string> arguments)
    {
        return ProgramRun::run("kt930ctl", std::move(arguments), temp.path());
    }
    // With --appdir of the copy after the arguments.
    ProgramRun ctl(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.end(), {"--appdir", appDir()});
        return run(std::move(arguments));
    }
    std::string appDir() const { return (temp / "app").string(); }
    std::filesystem::path data(const std::string &name) const { return temp / "app/Data" / name; }
    TempDir temp;
};

// A run's exit code, output and errors, for one comparison.
inline std::tuple<int, std::string, std::string> outcome(const ProgramRun &run)
{
    return {run.exitCode, run.out, run.err};
}
