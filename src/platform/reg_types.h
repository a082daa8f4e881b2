#pragma once
// Registry vocabulary shared by the store backends and everything above them.
// The numbers are the Windows ones, so the win32 backend passes them through.
#include <cstdint>

namespace braxcfg::platform {

using RegResult = long;  // a Windows error code: 0 is success
using RegType = std::uint32_t;
using RegAccess = std::uint32_t;

// An open key. 0 is "no key"; kLocalMachine is the predefined root.
using HKey = std::uint64_t;
inline constexpr HKey kNoKey = 0;
inline constexpr HKey kLocalMachine = 0x80000002u;

inline constexpr RegResult kErrorSuccess = 0;
inline constexpr RegResult kErrorFileNotFound = 2;
inline constexpr RegResult kErrorAccessDenied = 5;
inline constexpr RegResult kErrorInvalidHandle = 6;
inline constexpr RegResult kErrorInvalidParameter = 87;
inline constexpr RegResult kErrorBadPathname = 161;
inline constexpr RegResult kErrorMoreData = 234;
inline constexpr RegResult kErrorNoMoreItems = 259;
inline constexpr RegResult kErrorKeyDeleted = 1018;
inline constexpr RegResult kErrorBadDatabase = 1009;   // ERROR_BADDB: store file corrupt
inline constexpr RegResult kErrorCantWrite = 1013;     // ERROR_CANTWRITE: store read-only or I/O failure
inline constexpr RegResult kErrorBusy = 170;           // ERROR_BUSY: another process holds the write lock
inline constexpr RegResult kErrorDiskFull = 112;       // ERROR_DISK_FULL

inline constexpr RegType kRegNone = 0;
inline constexpr RegType kRegSz = 1;
inline constexpr RegType kRegExpandSz = 2;
inline constexpr RegType kRegBinary = 3;
inline constexpr RegType kRegDword = 4;
inline constexpr RegType kRegMultiSz = 7;
inline constexpr RegType kRegQword = 11;

// Types that hold text: kept with their terminator, and converted between
// UTF-16LE and the store's narrow code page in .reg hex form.
constexpr bool isTextType(RegType type) { return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz; }

inline constexpr RegAccess kKeyQueryValue = 0x0001;
inline constexpr RegAccess kKeyRead = 0x20019;  // values and subkeys: query, enumerate, notify
inline constexpr RegAccess kKeyAllAccess = 0xF003F;
inline constexpr RegAccess kKeyWow64_64Key = 0x0100;
inline constexpr RegAccess kKeyWow64_32Key = 0x0200;

inline constexpr std::uint32_t kMaxKeyNameLength = 255;
// Levels of keys below the root that the registry allows.
inline constexpr std::uint32_t kMaxKeyDepth = 512;
inline constexpr std::uint32_t kMaxValueNameLength = 16383;

}  // namespace braxcfg::platform
