#pragma once
// The rules a device address must pass before it joins an interface's
// device list: the part the user types after the interface prefix, such as
// "24" or "10::8". Pure text rules; nothing is looked up.
#include <optional>
#include <string>
#include <string_view>

namespace braxcfg::dialogs {

inline constexpr const char* kAddressBadCharacter = "Only the digits 0-9 and a colon (:) may be specified.";
inline constexpr const char* kAddressEmpty = "Device name must not be empty.";
inline constexpr const char* kAddressLeadingZero = "Leading zeros (0) are not allowed in numbers.";
inline constexpr const char* kAddressNoFinalNumber = "Device name must end with a number.";
inline constexpr const char* kAddressSingleColon = "Use :: instead of :";
inline constexpr const char* kAddressTripleColon = "Use :: instead of :::";

// Applies the rules in their fixed order and returns the message of the
// first that fails, or nothing when the address is accepted as typed.
std::optional<std::string> checkDeviceAddress(std::string_view address);

}  // namespace braxcfg::dialogs
