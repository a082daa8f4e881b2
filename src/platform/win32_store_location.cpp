#ifdef _WIN32
// Where the store is on Windows (the POSIX rules are in store_location.cpp):
// BRAXCFG_STORE when set, otherwise the machine's registry. There is no
// per-user fallback the VISA run time would read, so a user who may not
// write HKEY_LOCAL_MACHINE gets the tool's "not writable" error.
#include <cstdlib>

#include "platform/store.h"
#include "platform/win32_store_key.h"

namespace braxcfg::platform {

std::string machineWideStorePath() { return kMachineRegistry; }

std::string perUserStorePath() { return std::string(kUserRegistryPrefix) + "Software\\braxcfg\\Store"; }

std::string resolveStorePath() {
    const char* chosen = std::getenv("BRAXCFG_STORE");
    return chosen && *chosen ? std::string(chosen) : machineWideStorePath();
}

}  // namespace braxcfg::platform
#endif
