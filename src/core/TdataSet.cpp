#include "TdataSet.h"
#include "AppDir.h"
#include "AutosequenceConversions.h"
#include "FolderPermissions.h"
#include "MessageSink.h"
#include "OpCodeDefinitions.h"
#include "RegularFile.h"
#include "TdataFolderLock.h"
#include "TfileSetWriter.h"
#include "TimeStamp.h"
#include "TlastTransfer.h"
#include "TrestorePoints.h"
#include "autosequenceFileStructs.h"
#include <cstdio>
#include <cstring>
#include <fstream>
#include <mutex>

namespace fs = std::filesystem;

namespace {
// 0 when the bytes held a whole file; a short one counts as a failure.
int parseAutosequenceFile(TautosequenceFile &file, const std::string &bytes)
{
    try {
        return file.parse(bytes);
    } catch (const std::exception &) {
        return -1;
    }
}

std::string userTesterFileName(int index)
{
    return "usertester" + std::to_string(index + 1) + ".asq";
}

constexpr std::size_t CheckitemFileLimit = TInstrDatabase::SlotCount * sizeof(TInstr);

// What the last save of this process left in each file: another data set of ours (the
// checkitem editor's sync saves through one) is not another program.
std::mutex g_writtenMutex;
std::map<std::string, TdataSet::TfileStamp> g_written;

TdataSet::TfileStamp writtenByThisProcess(const fs::path &file)
{
    std::lock_guard<std::mutex> guard(g_writtenMutex);
    auto it = g_written.find(file.string());
    return it == g_written.end() ? TdataSet::TfileStamp{} : it->second;
}

void rememberWrittenByThisProcess(const fs::path &file, const TdataSet::TfileStamp &stamp)
{
    std::lock_guard<std::mutex> guard(g_writtenMutex);
    g_written[file.string()] = stamp;
}
} // namespace

TdataSet::TfileStamp TdataSet::TfileStamp::of(const std::string &bytes)
{
    // FNV-1a: enough to tell whether a file changed, not a defence against forgery.
    std::uint64_t hash = 14695981039346656037ull;
    for (unsigned char c : bytes)
        hash = (hash ^ c) * 1099511628211ull;
    return {true, bytes.size(), hash};
}

// The containers start default-constructed; the owner calls loadAll() when it is ready.
TdataSet::TdataSet(fs::path appDir, MessageSink &sink) : m_appDir(std::move(appDir)), m_sink(sink)
{
}

fs::path TdataSet::dataFolder() const
{
    return TappDir::dataFolder(m_appDir);
}

fs::path TdataSet::dataFile(const std::string &name) const
{
    return dataFolder() / name;
}

std::vector<std::string> TdataSet::fileNames()
{
    std::vector<std::string> names;
    for (const TpartFile &file : filesOf(Checkitems | Inspections | UserTesters | Checklists))
        names.push_back(file.name);
    return names;
}

std::vector<TdataSet::TpartFile> TdataSet::filesOf(unsigned parts)
{
    std::vector<TpartFile> files;
    if (parts & Checkitems)
        files.push_back({Checkitems, "mit.dat"});
    if (parts & Inspections)
        files.push_back({Inspections, "inspection.asq"});
    if (parts & UserTesters)
        for (int i = 0; i < UserTesterCount; ++i)
            files.push_back({UserTesters, userTesterFileName(i), i});
    if (parts & Checklists)
        files.push_back({Checklists, "testProc.asq"});
    return files;
}

bool TdataSet::readFile(const std::string &name, std::string &bytes, std::size_t limit)
{
    bytes.clear();
    std::ifstream in;
    if (!openRegularFile(in, dataFile(name)))
        return false;
    bytes.resize(limit);
    in.read(bytes.data(), std::streamsize(limit));
    bytes.resize(std::size_t(in.gcount()));
    return true;
}

void TdataSet::remember(const std::string &name, bool present, const std::string &bytes, bool unreadable)
{
    TfileState &state = m_files[name];
    state.known = true;
    state.stamp = present ? TfileStamp::of(bytes) : TfileStamp{};
    state.unreadable = present && unreadable;
}

// A save of ours killed half-way is finished before anything is read; so is a
// transfer's record, whose temporary would otherwise stay.
void TdataSet::recoverInterruptedSave()
{
    std::vector<std::string> names = fileNames();
    names.emplace_back(TlastTransfer::FileName);
    TfileSetWriter::recover(dataFolder(), names);
}

void TdataSet::loadCheckitems()
{
    TdataFolderLock lock(dataFolder(), TdataFolderLock::Mode::Read);
    recoverInterruptedSave();
    // Slots past the table's end would be cut at once: they are not read, however large the file.
    std::string bytes;
    const bool present = readFile("mit.dat", bytes, CheckitemFileLimit);
    remember("mit.dat", present, bytes, false);
    if (!present) {
        m_sink.error("Instruction List Error",
                     "Warning!! Corrupt Instruction List\nPlease restore the list from the KT930.");
        checkitems.clearAll();
        return;
    }
    std::vector<TInstr> &table = checkitems.slots();
    table.assign(bytes.size() / sizeof(TInstr), TInstr());
    std::memcpy(static_cast<void *>(table.data()), bytes.data(), table.size() * sizeof(TInstr));
    checkitems.normalizeSize();
}

void TdataSet::loadInspections()
{
    TdataFolderLock lock(dataFolder(), TdataFolderLock::Mode::Read);
    recoverInterruptedSave();
    std::string bytes;
    TautosequenceFile file;
    const bool present = readFile("inspection.asq", bytes);
    const bool loaded = present && parseAutosequenceFile(file, bytes) == 0;
    remember("inspection.asq", present, bytes, !loaded);
    if (loaded) {
        AutosequenceConversions::fileToInspections(file, inspections);
        return;
    }
    m_sink.error("Inspection Data Error",
                 "Warning!! Corrupt Physical Inspection List\nPlease restore the data from the KT930.");
    inspections.assign(DefaultInspectionCount, Tautosequence::unused());
}

bool TdataSet::loadUserTester(int index)
{
    const std::string name = userTesterFileName(index);
    std::string bytes;
    TautosequenceFile file;
    const bool present = readFile(name, bytes);
    const bool loaded = present && parseAutosequenceFile(file, bytes) == 0;
    remember(name, present, bytes, !loaded);
    userTesters.resize(UserTesterCount);
    userTesters[std::size_t(index)] =
        loaded ? AutosequenceConversions::fileToUserTester(file) : defaultUserTester(index);
    return loaded;
}

void TdataSet::loadUserTesters()
{
    TdataFolderLock lock(dataFolder(), TdataFolderLock::Mode::Read);
    recoverInterruptedSave();
    bool failed = false;
    for (int i = 0; i < UserTesterCount; ++i)
        failed = !loadUserTester(i) || failed;
    if (failed)
        m_sink.error("User Tester Sequences Error", "Warning!! One or more corrupt User Tester Sequences detected.\n"
                                                    "Please restore the data from the KT930.");
}

void TdataSet::loadChecklists()
{
    TdataFolderLock lock(dataFolder(), TdataFolderLock::Mode::Read);
    recoverInterruptedSave();
    std::string bytes;
    TautosequenceFile file;
    const bool present = readFile("testProc.asq", bytes);
    const bool loaded = present && parseAutosequenceFile(file, bytes) == 0;
    remember("testProc.asq", present, bytes, !loaded);
    if (loaded) {
        AutosequenceConversions::fileToChecklists(file, checklists);
        return;
    }
    m_sink.error("Checklist Error", "Warning!! Corrupt Checklist Data\nPlease restore the data from the KT930.");
    checklists.makeUnused();
}

// One lock for the whole set, so that no save lands between two of its files.
void TdataSet::loadAll()
{
    TdataFolderLock lock(dataFolder(), TdataFolderLock::Mode::Read);
    loadCheckitems();
    loadInspections();
    loadUserTesters();
    loadChecklists();
}

void TdataSet::reloadData()
{
    TdataFolderLock lock(dataFolder(), TdataFolderLock::Mode::Read);
    loadCheckitems();
    loadChecklists();
    loadInspections();
    loadUserTesters();
}

std::string TdataSet::bytesOf(const TpartFile &file)
{
    if (file.part == Checkitems)
        return std::string(reinterpret_cast<const char *>(checkitems.slots().data()),
                           checkitems.size() * sizeof(TInstr));
    TautosequenceFile image;
    if (file.part == Inspections)
        AutosequenceConversions::inspectionsToFile(inspections, image);
    else if (file.part == Checklists)
        AutosequenceConversions::checklistsToFile(checklists, image);
    else
        AutosequenceConversions::userTesterToFile(userTesters.at(std::size_t(file.tester)), image);
    return image.serialize();
}

std::string TdataSet::fileErrorText(const TpartFile &file) const
{
    switch (file.part) {
    case Checkitems:
        return "An error occured while backing up the master checkitem database";
    case Inspections:
        return "An error occured while backing up the data for Physical Inspections";
    case Checklists:
        return "An error occured while backing up the checklists";
    default:
        return "An error occured while backing up the data for User Tester Sequence " + std::to_string(file.tester + 1);
    }
}

void TdataSet::reloadFile(const TpartFile &file)
{
    switch (file.part) {
    case Checkitems:
        loadCheckitems();
        break;
    case Inspections:
        loadInspections();
        break;
    case Checklists:
        loadChecklists();
        break;
    default:
        if (!loadUserTester(file.tester))
            m_sink.error("User Tester Sequences Error",
                         "Warning!! One or more corrupt User Tester Sequences detected.\n"
                         "Please restore the data from the KT930.");
    }
}

bool TdataSet::loadsCleanly(const TpartFile &file)
{
    std::string bytes;
    if (!readFile(file.name, bytes))
        return !fs::exists(fs::symlink_status(dataFile(file.name)));
    TautosequenceFile image;
    return file.part == Checkitems || parseAutosequenceFile(image, bytes) == 0;
}

std::string TdataSet::unreadableCopyName(const std::string &name)
{
    return name + ".unreadable-" + localTimeStamp();
}

bool TdataSet::loadedCleanly(Part part, int tester) const
{
    const std::string name = part == UserTesters ? userTesterFileName(tester) : filesOf(part).front().name;
    const auto it = m_files.find(name);
    return it != m_files.end() && it->second.stamp.present && !it->second.unreadable;
}

std::vector<std::string> TdataSet::unreadableFiles() const
{
    std::vector<std::string> names;
    for (const auto &[name, state] : m_files)
        if (state.unreadable)
            names.push_back(name);
    return names;
}

std::vector<std::string> TdataSet::folderWarnings() const
{
    std::vector<std::string> lines = permissionWarnings(dataFolder());
    for (const std::string &name : unreadableFiles())
        lines.push_back(dataFile(name).string() +
                        " could not be read: before a save replaces it, its content is kept as " + name +
                        ".unreadable-<date>-<time> beside it.");
    return lines;
}

// The bytes of a file that failed to load may be the only copy of someone's work.
bool TdataSet::keepUnreadable(const TpartFile &file)
{
    TfileState &state = m_files[file.name];
    if (state.known ? !state.unreadable : loadsCleanly(file))
        return true;
    const fs::path copy = dataFile(unreadableCopyName(file.name));
    std::error_code ec;
    if (!fs::exists(dataFile(file.name), ec))
        return true;
    if (fs::exists(fs::symlink_status(copy, ec)) || !keepCopyOf(dataFile(file.name), copy))
        return false;
    state.unreadable = false;
    m_sink.show({"Unreadable File Kept",
                 "The file " + dataFile(file.name).string() + " could not be read. Its original content was kept as\n" +
                     copy.string() + "\nbefore it was replaced.",
                 MsgIcon::Information, MsgButtons::Ok, MsgModality::Task});
    return true;
}

bool TdataSet::save(unsigned parts, TsaveAction action)
{
    const std::vector<TpartFile> files = filesOf(parts);
    TdataFolderLock lock(dataFolder());
    if (!lock.locked()) {
        m_sink.error("Data Folder Busy", lock.failure() + "\nNothing was saved.");
        return false;
    }
    recoverInterruptedSave();
    bool complete = true;
    TfileSetWriter writer(dataFolder());
    std::vector<std::pair<std::string, std::string>> written;
    std::vector<TpartFile> staged;
    for (const TpartFile &file : files) {
        const std::string bytes = bytesOf(file);
        TfileState &state = m_files[file.name];
        if (action == TsaveAction::Edit && state.known) {
            std::string disk;
            const bool present = readFile(file.name, disk);
            const TfileStamp onDisk = present ? TfileStamp::of(disk) : TfileStamp{};
            // Changed on disk, and not into what is about to be written. A file deleted
            // since is written again: a deletion never wins over data.
            if (present && !(onDisk == state.stamp) && !(onDisk == TfileStamp::of(bytes)) &&
                !(onDisk == writtenByThisProcess(dataFile(file.name)))) {
                // Nothing changed here: the other program's version is simply taken.
                const bool keepMine =
                    !(TfileStamp::of(bytes) == state.stamp) &&
                    m_sink.show(
                        {"Data File Changed",
                         "The file\n" + dataFile(file.name).string() +
                             "\nwas changed by another program after it was loaded here.\n\n"
                             "Yes keeps the version shown here and replaces the file.\n"
                             "No loads the file's new content instead; the changes made here to it are dropped.",
                         MsgIcon::Question, MsgButtons::YesNo, MsgModality::Task}) == MsgAnswer::Yes;
                if (!keepMine) {
                    reloadFile(file);
                    continue;
                }
            }
        }
        if (!keepUnreadable(file) || writer.stage(dataFile(file.name), bytes) != AtomicWriteResult::Ok) {
            m_sink.error("File Error", fileErrorText(file));
            complete = false;
            continue;
        }
        written.emplace_back(file.name, bytes);
        staged.push_back(file);
    }
    if (writer.empty())
        return complete;
    if (action != TsaveAction::Edit) {
        static const char *const actionNames[] = {"edit", "download", "sync", "import"};
        std::vector<std::string> names;
        names.reserve(written.size());
        for (const auto &[name, bytes] : written)
            names.push_back(name);
        std::string why;
        if (!TrestorePoints(dataFolder()).create(actionNames[int(action)], names, why)) {
            m_sink.error("Restore Point Error", why + "\nNothing was saved.");
            return false;
        }
    }
    if (!writer.commit()) {
        for (const TpartFile &file : staged)
            m_sink.error("File Error", fileErrorText(file));
        return false;
    }
    for (const auto &[name, bytes] : written) {
        remember(name, true, bytes, false);
        rememberWrittenByThisProcess(dataFile(name), m_files[name].stamp);
    }
    return complete;
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
