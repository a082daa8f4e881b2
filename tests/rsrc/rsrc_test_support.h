#pragma once
// Shared helpers of the resource-string tests: a store with the PXI naming
// chosen, and the debug lines errLog writes.
#include <cstdio>
#include <string>
#include <vector>

#include "store_builder.h"
#include "temp_store.h"
#include "visacore/visa_types.h"

namespace braxcfg::test {

enum class PxiNaming { Legacy, BusDeviceFunction };

// A fresh store; with BusDeviceFunction it holds "UseLegacyPxiInstrFormat"
// = 0 and is reopened so the cached setting is read again.
class PxiStore : public TempStore {
public:
    explicit PxiStore(PxiNaming naming) {
        if (naming == PxiNaming::BusDeviceFunction) {
            putDword(underProduct(), "UseLegacyPxiInstrFormat", 0);
            reopen();
        }
    }
};

// One line as errLog writes it.
inline std::string logLine(visa::ViStatus status, const std::string& message) {
    char prefix[16];
    std::snprintf(prefix, sizeof prefix, "0x%08X: ", static_cast<unsigned>(status));
    return prefix + message + "\n";
}

// A writable copy of `text`, as parse wants one.
inline std::vector<char> writable(const std::string& text) {
    return std::vector<char>(text.c_str(), text.c_str() + text.size() + 1);
}

}  // namespace braxcfg::test
