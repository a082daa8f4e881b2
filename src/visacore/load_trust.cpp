#include "visacore/load_trust.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace braxcfg::visa {
namespace {

namespace fs = std::filesystem;

// Empty when nobody else can change `path`; the reason otherwise.
std::string untrusted(const fs::path& path, bool stickyAllowed) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) return path.string() + " cannot be examined";
    if (info.st_uid != 0 && info.st_uid != ::geteuid())
        return path.string() + " is owned by another user";
    const bool sticky = S_ISDIR(info.st_mode) && (info.st_mode & S_ISVTX) != 0;
    if ((info.st_mode & (S_IWGRP | S_IWOTH)) != 0 && !(stickyAllowed && sticky))
        return path.string() + " is writable by group or others";
    return {};
}

}  // namespace

bool trustedForLoading(const std::string& file, std::string& why) {
    std::error_code ec;
    const fs::path resolved = fs::canonical(file, ec);
    if (ec || !fs::is_regular_file(resolved, ec)) {
        why = file + " is not a regular file";
        return false;
    }
    why = untrusted(resolved, false);
    if (why.empty()) why = untrusted(resolved.parent_path(), false);
    for (fs::path dir = resolved.parent_path(); why.empty() && dir != dir.root_path(); ) {
        dir = dir.parent_path();
        why = untrusted(dir, true);
    }
    if (!why.empty()) why = "not loading " + file + ": " + why;
    return why.empty();
}

}  // namespace braxcfg::visa
