#pragma once
// The frame's working copy of the analyzer's content: checkitems, physical
// inspections, user testers and checklists, with their loaders (which report
// through the message sink and fall back to defaults) and save routines.
#include "TInstrDatabase.h"
#include "TTestProc.h"
#include "Tautosequence.h"
#include <filesystem>
#include <vector>

class MessageSink;

class TdataSet {
public:
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

    // Each save reports its own "File Error" and never throws. Checklists are never written.
    void saveCheckitems();
    void saveInspections();
    void saveUserTesters();
    void backup(); // checkitems, inspections, user testers

    // After a download: check every slot against the Data/*.in op codes, repair,
    // warn once. Reports its own errors.
    void validateOpCodes();

    static TuserTester defaultUserTester(int index); // "USER TESTER <2*index>", 12 blank
    static std::string unrecognizedOpCodeText();

private:
    std::filesystem::path m_appDir;
    MessageSink &m_sink;
};
