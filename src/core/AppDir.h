#pragma once
#include <filesystem>

// The application folder holds Data/, Plugins/, KT930pc.ini and the help files.
class TappDir {
public:
    // KT930PC_APPDIR when set, else the folder of the running executable.
    static std::filesystem::path applicationFolder();
    // "Data" and "data" name one folder: whichever spelling exists ("Data" when both or neither).
    static std::filesystem::path dataFolder(const std::filesystem::path &appDir);
};
