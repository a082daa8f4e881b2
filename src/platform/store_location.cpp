#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/store.h"

namespace braxcfg::platform {
namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

// The machine-wide store is used when it is there, or when this process
// (root) can make its folder; everybody else falls back to their own. The
// folder is made 0755 whatever the umask.
bool machineWideStoreUsable() {
    const std::filesystem::path file(machineWideStorePath());
    std::error_code ec;
    if (std::filesystem::exists(std::filesystem::symlink_status(file, ec))) return true;
    if (::geteuid() != 0) return false;
    const std::filesystem::path folder = file.parent_path();
    std::filesystem::create_directories(folder.parent_path(), ec);
    if (::mkdir(folder.c_str(), 0755) == 0) ::chmod(folder.c_str(), 0755);
    return std::filesystem::is_directory(folder, ec);
}

// Empty when only root can change `path` (owned by root, not writable by
// group or others; the file itself no symbolic link).
std::string rootOnlyProblem(const std::string& path, bool folder) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) return {};  // not there (yet)
    if (folder ? !S_ISDIR(info.st_mode) : !S_ISREG(info.st_mode))
        return path + (folder ? " is not a folder" : " is not a regular file");
    if (info.st_uid != 0) return path + " is not owned by root";
    if ((info.st_mode & (S_IWGRP | S_IWOTH)) != 0) return path + " is writable by group or others";
    return {};
}

}  // namespace

std::string machineWideStorePath() { return "/var/lib/braxcfg/registry.db"; }

bool isMachineWideStore(const std::string& path) {
    return std::filesystem::path(path).lexically_normal() == std::filesystem::path(machineWideStorePath());
}

std::string machineWideStoreProblem() {
    const std::string file = machineWideStorePath();
    std::string problem = rootOnlyProblem(std::filesystem::path(file).parent_path().string(), true);
    if (problem.empty()) problem = rootOnlyProblem(file, false);
    if (problem.empty()) return {};
    return "the machine-wide store is refused: " + problem + " (it must be root's alone: owned by root, "
           "folder 0755, file 0644)";
}

std::string perUserStorePath() {
    std::string state = environment("XDG_STATE_HOME");
    if (state.empty() || state.front() != '/') {
        const std::string home = environment("HOME");
        state = (home.empty() ? std::string(".") : home) + "/.local/state";
    }
    return state + "/braxcfg/registry.db";
}

std::string resolveStorePath() {
    // Set but empty names no store: it is refused, not taken as unset.
    if (std::getenv("BRAXCFG_STORE") != nullptr) return environment("BRAXCFG_STORE");
    return machineWideStoreUsable() ? machineWideStorePath() : perUserStorePath();
}

}  // namespace braxcfg::platform
