#pragma once
// The VISA configuration store operations: interface entries, device and
// interface-resource entries, and the VISA information block, all below the
// product key. The application object offers these to everything above it,
// so dialogs take a ConfigStore& and never reach the entry layer.
//
// A missing key reads as empty/false/0 and writes to it are skipped.
// Operations that rewrite a list do it in one transaction and return why
// nothing was written when it could not start or commit (None: written, or
// nothing to write). Interfaces are named by their key name, "INTF<n>".
#include <cstdint>
#include <string>
#include <vector>

#include "platform/store.h"

namespace braxcfg::store {

class ConfigStore {
public:
    // --- interface entries ---
    // "VISAName" of the interface key, empty when missing.
    std::string GetVisaName(const std::string& intf) const;
    // Interface type number from "VISAIntfType" (visacore/interface_types.h).
    std::uint16_t GetIntfType(const std::string& intf) const;
    // The same, with the normalised resource type ("INSTR" or "SOCKET").
    std::uint16_t GetIntfType(const std::string& intf, std::string& rsrcType) const;
    // Highest <n> among the INTF<n> keys, 0 when there is none.
    int GetMaxIntfNum() const;
    // A non-empty "VISAName".
    int IsValidVisaIntf(const std::string& intf) const;
    // Valid, and holding a value named exactly "VISAAutoConfigDriver".
    int IsVisaIntfSetup(const std::string& intf) const;
    // Marks the interface set up (once only) and creates its interface
    // resources from "DefaultIntfRsrcs".
    platform::StoreFailure SetupIntfEntries(const std::string& intf, int autoConfig) const;

    // --- device and interface-resource entries ---
    // The last text is accepted and not used; callers pass "".
    platform::StoreFailure AddDeviceEntry(const std::string& intf, const std::string& device,
                                          const std::string& classFilter, const std::string& unused) const;
    // AddDeviceEntry for each of `devices` in turn, in one transaction, the
    // resource classes read once.
    platform::StoreFailure AddDeviceEntries(const std::string& intf, const std::vector<std::string>& devices,
                                            const std::string& classFilter) const;
    platform::StoreFailure ClearDevices(const std::string& intf) const;
    std::string GetDeviceName(const std::string& intf, std::uint32_t index) const;
    // Every name GetDeviceName gives from index 0 to the first empty one,
    // read at once (one open of the list instead of one per name).
    std::vector<std::string> GetDeviceNames(const std::string& intf) const;
    std::string GetDeviceRsrcName(const std::string& intf, const std::string& device,
                                  std::uint32_t index) const;
    int IsAutoConfig(const std::string& intf) const;
    void SetAutoConfig(const std::string& intf, int flag) const;
    platform::StoreFailure RenameIntfEntries(const std::string& intf) const;

    // --- VISA information block ---
    // Writes the block on its first call in the process only.
    platform::StoreFailure WriteVisaInfoDefaults() const;
};

// Resets the "written once" flag of WriteVisaInfoDefaults (tests).
void resetVisaInfoWrittenFlag();

}  // namespace braxcfg::store
