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
// (root) can make its folder; everybody else falls back to their own.
bool machineWideStoreUsable() {
    const std::filesystem::path file(machineWideStorePath());
    std::error_code ec;
    if (std::filesystem::exists(file, ec)) return true;
    if (::geteuid() != 0) return false;
    std::filesystem::create_directories(file.parent_path(), ec);
    return !ec && std::filesystem::is_directory(file.parent_path(), ec);
}

}  // namespace

std::string machineWideStorePath() { return "/var/lib/braxcfg/registry.db"; }

std::string perUserStorePath() {
    std::string state = environment("XDG_STATE_HOME");
    if (state.empty() || state.front() != '/') {
        const std::string home = environment("HOME");
        state = (home.empty() ? std::string(".") : home) + "/.local/state";
    }
    return state + "/braxcfg/registry.db";
}

std::string resolveStorePath() {
    if (std::string chosen = environment("BRAXCFG_STORE"); !chosen.empty()) return chosen;
    return machineWideStoreUsable() ? machineWideStorePath() : perUserStorePath();
}

}  // namespace braxcfg::platform
