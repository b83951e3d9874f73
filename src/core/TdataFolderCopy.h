#pragma once
#include <filesystem>
#include <string>

// Copies an application folder's data set (the data files of Data/ and KT930pc.ini)
// to a new folder. The copy is built under a name of its own beside the target and
// renamed into place whole, so a failed copy leaves nothing that looks like a data
// set; the source is only read, under the folder's lock, so no save lands halfway.
// Restore points, locks and other dot files stay with the source.
class TdataFolderCopy {
public:
    // False with the reason in words when the target is the source or inside it, is a
    // link, exists and is not an empty folder, or cannot be made or written, or when
    // a file of the source cannot be read.
    static bool copy(const std::filesystem::path &source, const std::filesystem::path &target, std::string &why);
};
