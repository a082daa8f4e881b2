#pragma once
// Where the store is on Windows: the registry. The location
// "HKEY_LOCAL_MACHINE" is the machine's own registry, which a VISA run time
// reads; a location below HKEY_CURRENT_USER ("HKEY_CURRENT_USER\Software\x")
// names a key that stands in for HKEY_LOCAL_MACHINE, for tests and for
// trying a configuration out without administrator rights.
#ifdef _WIN32
#include <memory>
#include <string>

#include "platform/store_backend.h"
#include "platform/store_status.h"

namespace braxcfg::platform {

struct RegistryStoreOpening {
    StoreStatus status;
    std::unique_ptr<StoreBackend> backend;  // set only when status.state is Open
};

inline constexpr const char* kMachineRegistry = "HKEY_LOCAL_MACHINE";
inline constexpr const char* kUserRegistryPrefix = "HKEY_CURRENT_USER\\";

RegistryStoreOpening openRegistryStore(const std::string& location);

}  // namespace braxcfg::platform
#endif
