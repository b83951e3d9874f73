#include "RegularFile.h"
#include <sys/stat.h>

bool openRegularFile(std::ifstream &in, const std::filesystem::path &path)
{
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode))
        return false;
    in.open(path, std::ios::binary);
    return in.is_open();
}
