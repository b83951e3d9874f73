#pragma once
#include <filesystem>
#include <string>
#include <system_error>

// The folders a program works with, and why the application folder is the one it is.
struct TappFolders {
    std::filesystem::path application;    // Data/ and KT930pc.ini: the user's data
    std::filesystem::path plugins;        // the host's plug-in libraries
    std::filesystem::path help;           // the compiled help files
    std::filesystem::path defaults;       // shipped Data/ that seeds a new per-user folder; empty unless installed
    std::string reason;                   // why the application folder was chosen
    std::filesystem::path hostSettings{}; // the host's own settings (recent folders); empty when unknown
};

// What the choice depends on: the executable's folder and the environment.
struct TappEnvironment {
    std::filesystem::path executableFolder;
    std::string appDirOverride; // KT930PC_APPDIR
    std::string xdgDataHome;
    std::string home;
    std::string openedFolder{}; // OpenedFolderVariable
    std::string xdgConfigHome{};
    static TappEnvironment current();
};

class TappDir {
public:
    // The folder the host switched to: set in the host's own process, so that its
    // plug-ins read the data set the user opened. It moves the data, never the
    // plug-ins or the help.
    static constexpr const char *OpenedFolderVariable = "KT930PC_OPENED_APPDIR";

    // KT930PC_APPDIR when set; else the executable's folder when it holds Data/ and is
    // writable (a build folder or a portable copy); else, for an installed program, the
    // per-user folder $XDG_DATA_HOME/kt930pc (~/.local/share/kt930pc); else the executable's
    // folder. Plug-ins and help come from the install folder when installed, else from
    // the application folder. A folder opened in the host wins over all of these.
    // The host's settings are in $XDG_CONFIG_HOME/kt930pc (~/.config/kt930pc).
    static TappFolders resolve(const TappEnvironment &environment);
    static TappFolders folders() { return resolve(TappEnvironment::current()); }
    static std::filesystem::path applicationFolder() { return folders().application; }
    static std::filesystem::path helpFolder() { return folders().help; }
    // "Data" and "data" name one folder: whichever spelling exists ("Data" when both or neither).
    static std::filesystem::path dataFolder(const std::filesystem::path &appDir);

    enum class Seeding { Present, Created, Failed };
    // Copies the shipped defaults into an application folder that has no Data/ yet.
    // message says where the new folder is, or why it could not be made.
    static Seeding seed(const TappFolders &folders, std::string &message);
    // Makes a folder and its missing parents, each private to the user (0700).
    static void createPrivateFolders(const std::filesystem::path &folder, std::error_code &ec);
};
