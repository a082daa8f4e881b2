#pragma once
// The product's own settings below HKEY_LOCAL_MACHINE: the product key that
// roots the VISA configuration store (product_key.h), and the few values
// that steer the program. Every failure gives the documented default; nothing throws.
#include <cstdint>
#include <optional>
#include <string>

#include "platform/product_key.h"

namespace braxcfg::platform {

// A flag below the product key: REG_SZ "False"/"True" (any case) or a
// decimal number, REG_DWORD, or the first byte of REG_BINARY; anything
// else, or a missing key or value, gives `defaultValue`.
long readProductFlag(const std::string& name, long defaultValue);

// "UseLegacyPxiInstrFormat", default on; read once per store and cached.
long useLegacyPxiInstrFormat();

// "LinkbaseVisaPresent", migrating the older "KxVisaPresent" on first read;
// 1 when neither exists, 0 when the product key cannot be opened.
std::uint32_t visaPresent();

// "BaseDir", "." when missing; cached.
std::string baseDir();

// The two alias lists, subkeys of the product key.
inline constexpr const char* kDevicesList = "Devices";
inline constexpr const char* kVisaDevicesList = "VISADevices";

// Value `name` of list `list`, or `defaultText` when the key or value is
// missing. For "Devices" a missing entry falls back to the name itself when
// the default is empty.
std::string lookupDeviceList(const std::string& list, const std::string& name,
                             const std::string& defaultText = "");

// The index-th entry of `list`: true with its name and text when a
// non-empty text was found; false (both emptied) otherwise.
bool enumDeviceList(const std::string& list, std::uint32_t index, std::string& name, std::string& text);

// Writes alias `name` into "Devices" (devicesText) and "VISADevices"
// (visaDevicesText): a non-empty text is written, an empty one deletes, a
// missing one leaves that list alone. Returns 1 for a successful "Devices"
// change plus 2 for a successful "VISADevices" change.
int changeDeviceLists(const std::string& name, const std::optional<std::string>& devicesText,
                      const std::optional<std::string>& visaDevicesText);

}  // namespace braxcfg::platform
