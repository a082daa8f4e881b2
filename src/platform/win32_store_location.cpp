#ifdef _WIN32
// Where the store is on Windows (the POSIX rules are in store_location.cpp):
// BRAXCFG_STORE when set, otherwise the machine's registry. There is no
// per-user fallback the VISA run time would read, so a user who may not
// write HKEY_LOCAL_MACHINE gets the tool's "not writable" error. Only
// administrators may change HKEY_LOCAL_MACHINE\SOFTWARE, which the registry
// enforces itself: the machine-wide store needs no check of its own.
#include <cstdlib>

#include "platform/store.h"
#include "platform/win32_store_key.h"

namespace braxcfg::platform {

std::string machineWideStorePath() { return kMachineRegistry; }

bool isMachineWideStore(const std::string& path) { return path == kMachineRegistry; }

std::string machineWideStoreProblem() { return {}; }

std::string perUserStorePath() { return std::string(kUserRegistryPrefix) + "Software\\braxcfg\\Store"; }

std::string resolveStorePath() {
    // Set but empty names no store: it is refused, not taken as unset.
    const char* chosen = std::getenv("BRAXCFG_STORE");
    return chosen ? std::string(chosen) : machineWideStorePath();
}

}  // namespace braxcfg::platform
#endif
