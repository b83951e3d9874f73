#pragma once
// The frame's working copy of the analyzer's content: checkitems, physical
// inspections, user testers and checklists, with their loaders (which report
// through the message sink and fall back to defaults) and save routines.
#include "TInstrDatabase.h"
#include "TTestProc.h"
#include "Tautosequence.h"
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

class MessageSink;

// Why a save replaces files: an edit must not undo another program's changes made
// since the load; the others replace by design and keep a restore point instead.
enum class TsaveAction { Edit, Download, Sync, Import };

class TdataSet {
public:
    enum Part : unsigned { Checkitems = 1, Inspections = 2, UserTesters = 4, Checklists = 8 };

    static constexpr int UserTesterCount = 5;
    static constexpr int SequencesPerTester = 12;
    static constexpr int DefaultInspectionCount = 18;

    // Stores the folder and the sink only: the containers start as their defaults
    // (1044 cleared checkitems, 500 blank checklists, the default user tester list,
    // no inspections) until loadAll() is called.
    TdataSet(std::filesystem::path appDir, MessageSink &sink);

    TInstrDatabase checkitems;
    TTestProcList checklists;
    std::vector<TuserTester> userTesters = TuserTester::defaultList();
    std::vector<Tautosequence> inspections;

    const std::filesystem::path &appDir() const { return m_appDir; }
    std::filesystem::path dataFolder() const;
    std::filesystem::path dataFile(const std::string &name) const; // dataFolder()/name
    MessageSink &sink() { return m_sink; }

    // Each loader reports its own failure and installs defaults; none throws.
    void loadCheckitems();
    void loadInspections();
    void loadUserTesters();
    void loadChecklists();
    void loadAll();    // construction order: checkitems, inspections, testers, checklists
    void reloadData(); // ReloadData order: checkitems, checklists, inspections, testers

    // Writes the files of the given parts as one set under the folder's lock: after a
    // kill the folder holds all of the old files or all of the new ones. Each file that
    // cannot be written gets its own "File Error" and stays as it was; the others are
    // saved. An Edit asks before replacing a file that changed on disk since it was
    // loaded or saved here (and silently takes the disk's version where nothing was
    // changed here); the other actions keep a restore point of what they replace.
    // A file that failed to load is kept beside itself before it is replaced.
    // True when every file was written. Never throws.
    bool save(unsigned parts, TsaveAction action = TsaveAction::Edit);
    bool saveCheckitems(TsaveAction action = TsaveAction::Edit) { return save(Checkitems, action); }
    bool saveInspections() { return save(Inspections); }
    bool saveUserTesters() { return save(UserTesters); }
    bool backup(TsaveAction action = TsaveAction::Edit) { return save(Checkitems | Inspections | UserTesters, action); }

    // False when the file of that part (of user tester `tester`, from 0) was missing or
    // unreadable at its last load, so the part holds defaults.
    bool loadedCleanly(Part part, int tester = 0) const;
    // The data files that failed to load and are not yet kept aside.
    std::vector<std::string> unreadableFiles() const;
    // What a technician should know about the folder after a load or a save, one line
    // each: a folder or file others may write, files that failed to load and where
    // their bytes will be kept.
    std::vector<std::string> folderWarnings() const;
    // The name a file that failed to load is kept under when a save replaces it.
    static std::string unreadableCopyName(const std::string &name);
    static std::vector<std::string> fileNames(); // every data file of the set

    // After a download: check every slot against the Data/*.in op codes, repair,
    // warn once. Reports its own errors.
    void validateOpCodes();

    static TuserTester defaultUserTester(int index); // "USER TESTER <2*index>", 12 blank
    static std::string unrecognizedOpCodeText();

    // What a data file held when this set last read or wrote it.
    struct TfileStamp {
        bool present = false;
        std::uint64_t size = 0;
        std::uint64_t hash = 0;
        bool operator==(const TfileStamp &) const = default;
        static TfileStamp of(const std::string &bytes);
    };

private:
    struct TfileState {
        bool known = false; // read or written by this set
        TfileStamp stamp;
        bool unreadable = false;
    };
    struct TpartFile {
        Part part;
        std::string name;
        int tester = -1;
    };
    static std::vector<TpartFile> filesOf(unsigned parts);
    std::string bytesOf(const TpartFile &file);
    std::string fileErrorText(const TpartFile &file) const;
    void reloadFile(const TpartFile &file);
    bool loadUserTester(int index);
    // Reads a data file whole (at most `limit` bytes); false when it is missing or not a regular file.
    bool readFile(const std::string &name, std::string &bytes, std::size_t limit = 16u << 20);
    void remember(const std::string &name, bool present, const std::string &bytes, bool unreadable);
    bool loadsCleanly(const TpartFile &file);
    bool keepUnreadable(const TpartFile &file);
    void recoverInterruptedSave();

    std::filesystem::path m_appDir;
    MessageSink &m_sink;
    std::map<std::string, TfileState> m_files;
};
