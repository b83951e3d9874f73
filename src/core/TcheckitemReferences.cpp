#include "TcheckitemReferences.h"
#include "autosequenceFileStructs.h"
#include <algorithm>

namespace fs = std::filesystem;

namespace {
// Sorted by name, so the list does not depend on the file system's order.
std::vector<fs::path> autosequenceFiles(const fs::path &dataFolder)
{
    std::vector<fs::path> files;
    std::error_code ec;
    for (fs::directory_iterator it(dataFolder, ec), end; !ec && it != end; it.increment(ec))
        if (it->path().extension() == ".asq" && it->is_regular_file(ec))
            files.push_back(it->path());
    std::sort(files.begin(), files.end(),
              [](const fs::path &a, const fs::path &b) { return a.filename() < b.filename(); });
    return files;
}

bool readFile(const fs::path &path, TautosequenceFile &file)
{
    try {
        return file.read(path) == 0;
    } catch (const TInvalidRead &) {
        return false;
    }
}
}

TcheckitemReferences TcheckitemReferences::find(std::uint16_t number, const fs::path &dataFolder)
{
    TcheckitemReferences references;
    const std::vector<fs::path> files = autosequenceFiles(dataFolder);
    references.autosequenceFilesFound = !files.empty();
    for (const fs::path &path : files) {
        TautosequenceFile file;
        if (!readFile(path, file))
            continue;
        const std::vector<std::string> names = file.referencesTo(number);
        if (names.empty())
            continue;
        references.lines.push_back(file.title() + " - " + file.subtitle());
        for (const std::string &name : names)
            references.lines.push_back("  " + name);
    }
    return references;
}
