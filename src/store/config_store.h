#pragma once
// The VISA configuration store operations: interface entries, device and
// interface-resource entries, and the VISA information block, all below the
// product key. The application object offers these to everything above it,
// so dialogs take a ConfigStore& and never reach the entry layer.
//
// Failures are silent: a missing key reads as empty/false/0 and writes to
// it are skipped. Interfaces are named by their key name, "INTF<n>".
#include <cstdint>
#include <span>
#include <string>

namespace braxcfg::store {

// Interface type codes (16-bit).
inline constexpr std::uint16_t kIntfUnknown = 0;
inline constexpr std::uint16_t kIntfGpib = 1;
inline constexpr std::uint16_t kIntfVxi = 2;
inline constexpr std::uint16_t kIntfGpibVxi = 3;
inline constexpr std::uint16_t kIntfAsrl = 4;
inline constexpr std::uint16_t kIntfPxi = 5;
inline constexpr std::uint16_t kIntfTcpip = 6;
inline constexpr std::uint16_t kIntfUsb = 7;
inline constexpr std::uint16_t kIntfRsib = 0x800E;

// A "VISAIntfType" word with its type code.
struct IntfTypeWord {
    const char* word;
    std::uint16_t code;
};
// Every word the store knows, in the order GetIntfType compares them
// (case-sensitively).
std::span<const IntfTypeWord> intfTypeWords();

class ConfigStore {
public:
    virtual ~ConfigStore() = default;

    // --- interface entries ---
    // "VISAName" of the interface key, empty when missing.
    std::string GetVisaName(const std::string& intf) const;
    // Type code from "VISAIntfType" (case-sensitive words).
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
    void SetupIntfEntries(const std::string& intf, int autoConfig) const;

    // --- device and interface-resource entries ---
    void AddDeviceEntry(const std::string& intf, const std::string& device, const std::string& classFilter,
                        const std::string& unused = "") const;
    void ClearDevices(const std::string& intf) const;
    std::string GetDeviceName(const std::string& intf, std::uint32_t index) const;
    std::string GetDeviceRsrcName(const std::string& intf, const std::string& device,
                                  std::uint32_t index) const;
    int IsAutoConfig(const std::string& intf) const;
    void SetAutoConfig(const std::string& intf, int flag) const;
    void RenameIntfEntries(const std::string& intf) const;

    // --- VISA information block ---
    // Writes the block on its first call in the process only.
    void WriteVisaInfoDefaults() const;
};

// Resets the "written once" flag of WriteVisaInfoDefaults (tests).
void resetVisaInfoWrittenFlag();

}  // namespace braxcfg::store
