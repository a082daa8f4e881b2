#pragma once
// The registry operations the product needs, shaped like the advapi32 calls
// they stand for so that the Windows backend is a thin pass-through. Every
// call is one transaction of its own unless a StoreTransaction is held.
//
// Contract (what Windows does; the SQLite backend keeps it):
// - key and value names compare case-insensitively (each character
//   upper-cased, cp1252 letters included) and keep the case they were
//   created with; "\" separates path components, runs of "\" count as one,
//   trailing "\" are ignored, a leading "\" is kBadPathname;
// - subkeys enumerate sorted by upper-cased name, by character code;
// - values enumerate in creation order (overwrite keeps the slot, delete and
//   re-add goes last);
// - deleteKey is not recursive (kAccessDenied while subkeys exist);
// - a handle whose key was deleted answers kKeyDeleted and never reaches a
//   later key of the same name;
// - an enumeration that goes on index by index (i right after i - 1) on
//   one handle keeps the subkey list it began with, so another process's
//   commit shows from the next call that does not continue it (index 0,
//   any other index, another handle); this process's changes show at once;
// - the WOW64 view flags are accepted and ignored (both together: kInvalidParameter).
#include <cstdint>

#include "platform/reg_types.h"

namespace braxcfg::platform {

class StoreBackend {
public:
    virtual ~StoreBackend() = default;

    // RegOpenKeyExA. An empty or null subKey opens a new handle on parent.
    virtual RegResult openKey(HKey parent, const char* subKey, RegAccess access, HKey* result) = 0;
    // RegCreateKeyExA: creates missing intermediate keys. `created` may be null.
    virtual RegResult createKey(HKey parent, const char* subKey, RegAccess access, HKey* result,
                                bool* created) = 0;
    virtual RegResult closeKey(HKey key) = 0;

    // RegQueryValueExA: null or "" name is the default value. data may be
    // null to ask the size; a too-small buffer gives kErrorMoreData, the
    // needed size in *cbData and the buffer untouched.
    virtual RegResult queryValue(HKey key, const char* name, RegType* type, std::uint8_t* data,
                                 std::uint32_t* cbData) = 0;
    // RegSetValueExA: bytes are stored as given (a REG_SZ caller passes the
    // terminator; one is added when data[cbData] is NUL, as Windows does).
    virtual RegResult setValue(HKey key, const char* name, RegType type, const std::uint8_t* data,
                               std::uint32_t cbData) = 0;
    virtual RegResult deleteValue(HKey key, const char* name) = 0;
    // RegDeleteKeyA.
    virtual RegResult deleteKey(HKey parent, const char* subKey) = 0;

    // RegEnumKeyA: name of the index-th subkey into name[cchName]; a name
    // that does not fit (length + 1 > cchName) is kErrorMoreData with
    // nothing copied; past the end kErrorNoMoreItems.
    virtual RegResult enumKey(HKey key, std::uint32_t index, char* name, std::uint32_t cchName) = 0;
    // RegEnumValueA, with its in/out sizes; data, type and cbData may be null.
    virtual RegResult enumValue(HKey key, std::uint32_t index, char* name, std::uint32_t* cchName,
                                RegType* type, std::uint8_t* data, std::uint32_t* cbData) = 0;

    // RegQueryInfoKeyA, reduced to what is used: the number of subkeys and
    // the key's last write time, which moves whenever its subkey list
    // changes (here a stamp, not a clock: compare it only for equality).
    // Either pointer may be null.
    virtual RegResult queryInfoKey(HKey key, std::uint32_t* subKeys, std::uint64_t* lastWriteTime) = 0;

    // Nestable transaction scope; see StoreTransaction.
    virtual RegResult beginTransaction() = 0;
    virtual RegResult commitTransaction() = 0;
    virtual void rollbackTransaction() = 0;
};

}  // namespace braxcfg::platform
