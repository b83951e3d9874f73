#include "TrestorePoints.h"
#include "TdataFolderLock.h"
#include "TdataSet.h"
#include "TfileSetWriter.h"
#include "TimeStamp.h"
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
constexpr const char *ActionFile = "action";

std::string readSmallFile(const fs::path &path)
{
    std::ifstream in(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(in), {});
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text;
}

// "20261123-141503-2" → "2026-11-23 14:15:03"
std::string displayTime(const std::string &name)
{
    if (name.size() < 15 || name[8] != '-')
        return name;
    return name.substr(0, 4) + "-" + name.substr(4, 2) + "-" + name.substr(6, 2) + " " + name.substr(9, 2) + ":"
        + name.substr(11, 2) + ":" + name.substr(13, 2);
}

// A restore point is named by its time and a counter that keeps two of one second apart.
struct PointName {
    std::string time;
    int counter = 0;
    static PointName of(const fs::path &folder)
    {
        const std::string name = folder.filename().string();
        PointName parsed{name.substr(0, 15), 0};
        if (name.size() > 16)
            parsed.counter = std::atoi(name.c_str() + 16);
        return parsed;
    }
};

// A folder planted by another user, or a link to one, would receive copies of our data
// and offer its own files to a restore. Ours, or the data folder owner's (root working
// on a user's folder), as the kernel's protected_symlinks rule trusts.
bool isOwnFolder(const fs::path &folder)
{
    struct stat st {}, parent {};
    return ::lstat(folder.c_str(), &st) == 0 && S_ISDIR(st.st_mode)
        && (st.st_uid == ::geteuid()
            || (::stat(folder.parent_path().c_str(), &parent) == 0 && st.st_uid == parent.st_uid));
}

// Newest first.
std::vector<fs::path> pointFolders(const fs::path &folder)
{
    std::vector<fs::path> result;
    if (!isOwnFolder(folder))
        return result;
    std::error_code ec;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
        if (it->is_directory(ec) && !it->is_symlink(ec) && it->path().extension().empty())
            result.push_back(it->path());
    std::sort(result.begin(), result.end(), [](const fs::path &a, const fs::path &b) {
        const PointName x = PointName::of(a), y = PointName::of(b);
        return x.time != y.time ? x.time > y.time : x.counter > y.counter;
    });
    return result;
}
}

TrestorePoints::TrestorePoints(fs::path dataFolder) : m_dataFolder(std::move(dataFolder)) {}

bool TrestorePoints::create(const std::string &action, const std::vector<std::string> &names, std::string &why)
{
    std::error_code ec;
    if (::mkdir(folder().c_str(), 0700) != 0 && errno != EEXIST) {
        why = "The restore point folder " + folder().string() + " cannot be created.";
        return false;
    }
    if (!isOwnFolder(folder())) {
        why = "The restore point folder " + folder().string() + " is not a folder of your own.";
        return false;
    }
    const std::string stamp = localTimeStamp();
    fs::path point;
    for (int counter = 1;; ++counter) {
        point = folder() / (stamp + "-" + std::to_string(counter));
        const fs::path partial = point.string() + ".partial";
        if (fs::exists(point, ec) || fs::exists(partial, ec))
            continue;
        if (::mkdir(partial.c_str(), 0700) != 0) {
            why = "The restore point " + partial.string() + " cannot be created.";
            return false;
        }
        bool kept = true;
        for (const std::string &name : names) {
            const fs::path file = m_dataFolder / name;
            if (fs::exists(file, ec))
                kept = kept && keepCopyOf(file, partial / name);
        }
        // Flushed like the copies: a point without its action after a power cut is not listed right.
        kept = kept && writeFileAtomically(partial / ActionFile, action + "\n") == AtomicWriteResult::Ok;
        // Complete before it takes its name: a half-made restore point is never listed.
        if (!kept || !syncFolder(partial) || std::rename(partial.c_str(), point.c_str()) != 0) {
            fs::remove_all(partial, ec);
            why = "The files to be replaced could not be copied into " + folder().string() + ".";
            return false;
        }
        syncFolder(folder());
        break;
    }
    const std::vector<fs::path> points = pointFolders(folder());
    for (std::size_t i = Kept; i < points.size(); ++i)
        fs::remove_all(points[i], ec);
    // A restore point cut short by a kill.
    for (fs::directory_iterator it(folder(), ec), end; !ec && it != end; it.increment(ec))
        if (it->path().extension() == ".partial" && it->path() != point.string() + ".partial")
            fs::remove_all(it->path(), ec);
    return true;
}

std::vector<TrestorePoint> TrestorePoints::list() const
{
    std::vector<TrestorePoint> result;
    for (const fs::path &path : pointFolders(folder())) {
        TrestorePoint point;
        point.number = int(result.size()) + 1;
        point.folder = path;
        point.time = displayTime(path.filename().string());
        point.action = readSmallFile(path / ActionFile);
        std::error_code ec;
        for (fs::directory_iterator it(path, ec), end; !ec && it != end; it.increment(ec))
            if (it->path().filename() != ActionFile)
                point.files.push_back(it->path().filename().string());
        std::sort(point.files.begin(), point.files.end());
        result.push_back(point);
    }
    return result;
}

bool TrestorePoints::restore(int number, std::string &why)
{
    TdataFolderLock lock(m_dataFolder);
    if (!lock.locked()) {
        why = lock.failure();
        return false;
    }
    // A save killed half way is finished first: its own record would be overwritten by ours,
    // and the restore point of what we replace must be a consistent set.
    TfileSetWriter::recover(m_dataFolder, TdataSet::fileNames());
    const std::vector<TrestorePoint> points = list();
    if (number < 1 || number > int(points.size())) {
        why = points.empty() ? "There are no restore points in " + folder().string() + "."
                             : "There is no restore point " + std::to_string(number) + "; the restore points are 1 to "
                + std::to_string(points.size()) + ".";
        return false;
    }
    const TrestorePoint &point = points[std::size_t(number - 1)];
    TfileSetWriter writer(m_dataFolder);
    for (const std::string &name : point.files) {
        std::ifstream in(point.folder / name, std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(in), {});
        if (!in.good() && !in.eof()) {
            why = "The restore point file " + (point.folder / name).string() + " cannot be read.";
            return false;
        }
        if (writer.stage(m_dataFolder / name, bytes) != AtomicWriteResult::Ok) {
            why = "The file " + (m_dataFolder / name).string() + " cannot be replaced.";
            return false;
        }
    }
    if (!create("restore " + std::to_string(number) + " (" + point.time + ")", point.files, why))
        return false;
    if (!writer.commit()) {
        why = "The data folder " + m_dataFolder.string() + " could not be written.";
        return false;
    }
    return true;
}
