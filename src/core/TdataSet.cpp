#include "TdataSet.h"
#include "AppDir.h"
#include "AutosequenceConversions.h"
#include "MessageSink.h"
#include "OpCodeDefinitions.h"
#include "autosequenceFileStructs.h"
#include <cstdio>

namespace fs = std::filesystem;

namespace {
// 0 when the file was read whole; a short read counts as a failure.
int readAutosequenceFile(TautosequenceFile &file, const fs::path &path)
{
    try {
        return file.read(path);
    } catch (const std::exception &) {
        return -1;
    }
}

int writeAutosequenceFile(TautosequenceFile &file, const fs::path &path)
{
    try {
        return file.write(path);
    } catch (const std::exception &) {
        return -1;
    }
}

std::string userTesterFileName(int index)
{
    return "usertester" + std::to_string(index + 1) + ".asq";
}
}

// The containers start default-constructed; the owner calls loadAll() when it is ready.
TdataSet::TdataSet(fs::path appDir, MessageSink &sink) : m_appDir(std::move(appDir)), m_sink(sink) {}

fs::path TdataSet::dataFolder() const
{
    return TappDir::dataFolder(m_appDir);
}

fs::path TdataSet::dataFile(const std::string &name) const
{
    return dataFolder() / name;
}

void TdataSet::loadCheckitems()
{
    // Slots past the table's end would be cut at once: they are not read, however large the file.
    if (TInstrDatabase::loadMasterTable(checkitems.slots(), dataFile("mit.dat"), TInstrDatabase::SlotCount) != 0) {
        m_sink.error("Instruction List Error",
                     "Warning!! Corrupt Instruction List\nPlease restore the list from the KT930.");
        checkitems.clearAll();
        return;
    }
    checkitems.normalizeSize();
}

void TdataSet::loadInspections()
{
    TautosequenceFile file;
    if (readAutosequenceFile(file, dataFile("inspection.asq")) == 0) {
        AutosequenceConversions::fileToInspections(file, inspections);
        return;
    }
    m_sink.error("Inspection Data Error",
                 "Warning!! Corrupt Physical Inspection List\nPlease restore the data from the KT930.");
    inspections.assign(DefaultInspectionCount, Tautosequence::unused());
}

void TdataSet::loadUserTesters()
{
    std::vector<TuserTester> loaded;
    bool failed = false;
    for (int i = 0; i < UserTesterCount; ++i) {
        TautosequenceFile file;
        if (readAutosequenceFile(file, dataFile(userTesterFileName(i))) == 0) {
            loaded.push_back(AutosequenceConversions::fileToUserTester(file));
        } else {
            loaded.push_back(defaultUserTester(i));
            failed = true;
        }
    }
    userTesters = std::move(loaded);
    if (failed)
        m_sink.error("User Tester Sequences Error",
                     "Warning!! One or more corrupt User Tester Sequences detected.\n"
                     "Please restore the data from the KT930.");
}

void TdataSet::loadChecklists()
{
    TautosequenceFile file;
    if (readAutosequenceFile(file, dataFile("testProc.asq")) == 0) {
        AutosequenceConversions::fileToChecklists(file, checklists);
        return;
    }
    m_sink.error("Checklist Error", "Warning!! Corrupt Checklist Data\nPlease restore the data from the KT930.");
    checklists.makeUnused();
}

void TdataSet::loadAll()
{
    loadCheckitems();
    loadInspections();
    loadUserTesters();
    loadChecklists();
}

void TdataSet::reloadData()
{
    loadCheckitems();
    loadChecklists();
    loadInspections();
    loadUserTesters();
}

void TdataSet::saveCheckitems()
{
    if (TInstrDatabase::saveMasterTable(checkitems.slots(), dataFile("mit.dat")) != 0)
        m_sink.error("File Error", "An error occured while backing up the master checkitem database");
}

void TdataSet::saveInspections()
{
    TautosequenceFile file;
    AutosequenceConversions::inspectionsToFile(inspections, file);
    if (writeAutosequenceFile(file, dataFile("inspection.asq")) != 0)
        m_sink.error("File Error", "An error occured while backing up the data for Physical Inspections");
}

void TdataSet::saveUserTesters()
{
    const std::vector<TuserTester> testers = userTesters;
    for (std::size_t i = 0; i < testers.size(); ++i) {
        TautosequenceFile file;
        AutosequenceConversions::userTesterToFile(testers[i], file);
        if (writeAutosequenceFile(file, dataFile(userTesterFileName(static_cast<int>(i)))) != 0)
            m_sink.error("File Error", "An error occured while backing up the data for User Tester Sequence "
                                           + std::to_string(i + 1));
    }
}

void TdataSet::backup()
{
    saveCheckitems();
    saveInspections();
    saveUserTesters();
}

void TdataSet::validateOpCodes()
{
    try {
        std::vector<fs::path> files = OpCodeDefinitions::listFiles(dataFolder());
        if (files.empty()) {
            m_sink.error("ERROR!", OpCodeDefinitions::noFilesText(OpCodeDefinitions::Wording::CheckitemDatabase));
            return;
        }
        TopCodeTable table;
        for (const fs::path &file : files) {
            try {
                TinstStruct definition = OpCodeDefinitions::readHeader(file);
                table.emplace(definition.opCode, definition);
            } catch (const TopCodeFileCorrupt &) {
                // Here the box names the file only, not its full path.
                m_sink.error("ERROR", OpCodeDefinitions::corruptFileText(file.filename().string()));
                return;
            }
        }
        if (checkitems.repairUnknownOpCodes(table))
            m_sink.warning("UNRECOGNIZED OP CODE", unrecognizedOpCodeText());
    } catch (...) {
        m_sink.warning("Error", "Error Validating Op Codes");
    }
}

TuserTester TdataSet::defaultUserTester(int index)
{
    // The number is twice the index (0, 2, 4, 6, 8); this is the intended naming.
    char name[64];
    std::snprintf(name, sizeof name, "USER TESTER %d", 2 * index);
    TuserTester tester;
    tester.name = name;
    tester.sequences.assign(SequencesPerTester, Tautosequence::unused());
    return tester;
}

std::string TdataSet::unrecognizedOpCodeText()
{
    return "ATTENTION!!\nDO NOT UPLOAD ANY DATA TO THE ANALYZER!!\n\n"
           "One or more checkitems contain unrecognized op codes.\n"
           "The most likely reason for this is that the data is being\n"
           "downloaded to a PC with an incomplete software configuration.\n\n"
           // The rest breaks only between sentences and leaves the wrapping to the box.
           "Some plug-ins may be missing on this PC or may be out of date. "
           "The latest versions of all plug-ins are available on the manufacturer's web site. "
           "Please install them and download the data again.\n\n"
           "A less likely reason is a corrupted master checkitem database in the analyzer. "
           "If the problem remains after the plug-ins have been updated, "
           "please contact your nearest sales or service representative.";
}
