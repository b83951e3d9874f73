#include "ProgramRun.h"
#include "TempDir.h"
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

extern char **environ;

ProgramRun ProgramRun::run(const std::string &program, std::vector<std::string> arguments,
                           const std::filesystem::path &scratch)
{
    return spawn(std::string(KT930_TEST_APPDIR) + "/" + program, false, std::move(arguments), scratch);
}

ProgramRun ProgramRun::runTool(const std::string &tool, std::vector<std::string> arguments,
                               const std::filesystem::path &scratch)
{
    return spawn(tool, true, std::move(arguments), scratch);
}

ProgramRun ProgramRun::spawn(std::string path, bool searchPath, std::vector<std::string> arguments,
                             const std::filesystem::path &scratch)
{
    std::vector<char *> argv{path.data()};
    for (std::string &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    const std::string out = (scratch / "out.txt").string(), err = (scratch / "err.txt").string();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t pid = -1;
    int status = -1;
    auto start = searchPath ? posix_spawnp : posix_spawn;
    if (start(&pid, path.c_str(), &actions, nullptr, argv.data(), environ) == 0)
        ::waitpid(pid, &status, 0);
    posix_spawn_file_actions_destroy(&actions);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, TempDir::read(out), TempDir::read(err)};
}
