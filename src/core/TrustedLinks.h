#pragma once
#include <filesystem>

// Resolves every symbolic link on the way to path, following a link only where the
// kernel's protected_symlinks rule would let the effective user follow it: the link
// belongs to that user or to the owner of the folder that holds it. A link planted by
// someone else in a shared folder is refused. Components that do not exist are kept as
// written, so the result also names a file about to be created. False for a refused
// link, a loop, or a link that cannot be read; resolved is then left alone.
bool resolveTrustedLinks(const std::filesystem::path &path, std::filesystem::path &resolved);
