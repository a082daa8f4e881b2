#pragma once
// Whether a shared library may be loaded into this process: as a dynamic
// loader in secure mode requires, nobody but root and this user can have
// placed or changed it.
#include <string>

namespace braxcfg::visa {

// True when `file` (symbolic links resolved) is a regular file, and it and
// every directory above it are owned by root or the effective user and not
// writable by group or others (a directory with the sticky bit, such as
// /tmp, may be writable above the library's own directory). Otherwise
// false, with the reason in `why`.
bool trustedForLoading(const std::string& file, std::string& why);

}  // namespace braxcfg::visa
