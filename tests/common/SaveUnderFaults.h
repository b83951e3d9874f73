#pragma once
// Saves of the full data set that are killed or starved of disk space, and what
// they leave in the data folder. The tests run a few of each; scripts/soak many.
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace SaveUnderFaults {
// The files one save of the full data set writes, by name, as saved from a variant.
using Files = std::map<std::string, std::string>;
Files savedFiles(int variant);

struct KilledFigures {
    int kills = 0;
    int killedBetweenFiles = 0; // kills after which the next load saw old and new files mixed
    int filesChecked = 0;
    int torn = 0;               // files equal to neither the old nor the new content
    int leftoversAfterKill = 0; // other names in the data folder right after a kill
    int leftoversAtEnd = 0;     // other names after one more, undisturbed save
};
// Runs the save loop program (`program APPDIR`) and kills it with SIGKILL at a
// random moment `kills` times, checking the data folder after each kill as the next
// program to load it sees it.
KilledFigures killSaves(const std::filesystem::path &program, int kills, unsigned seed);

struct RenameKillFigures {
    int kills = 0; // runs killed at a rename: one per rename the command makes
    int mixed = 0; // kills after which the next load saw neither the old nor the new set
    int leftovers = 0;
};
// Runs command (a program on PATH or a path, and its arguments) once whole, then under
// strace once per rename it makes, killed at that rename; before each run the data
// folder of appDir holds `before`, after each run it is loaded as the next program
// would load it and must hold `before` or the whole run's files.
RenameKillFigures killAtEveryRename(const std::vector<std::string> &command, const std::filesystem::path &appDir,
                                    const Files &before);

struct StarvedFigures {
    int saves = 0;
    int filesFailed = 0;
    int wrongMessages = 0; // saves whose messages were not one "File Error" per failed file
    int changedByFailure = 0;
    int leftovers = 0;
};
// Saves under a file size limit (RLIMIT_FSIZE, as a full disk would refuse the
// writes), once per limit; every file must be old or new as its size decides.
StarvedFigures starveSaves(const std::vector<std::size_t> &limits);

}
