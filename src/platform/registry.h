#pragma once
// Registry: one open key of the configuration store (held in a StoreKey),
// with typed reads and writes, enumeration and recursive deletion. A failed
// open leaves the object empty: every read then gives its empty/zero value
// and every write is skipped. Nothing throws.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/reg_types.h"
#include "platform/store_key.h"

namespace braxcfg::platform {

// How a Registry opens its key. Held as an int because callers may pass any
// number; only 0 and 1 are accepted.
using RegState = int;
inline constexpr RegState kRegOpenOrCreate = 0;
inline constexpr RegState kRegOpenExisting = 1;

// Which registry view to ask for. There is one view here (as for a 64-bit
// process), so the flag is passed on and changes nothing.
enum class RegView { View64, View32 };

class Registry {
public:
    // HKEY_LOCAL_MACHINE\<product key>\<subKey>.
    Registry(const std::string& subKey, RegState state, RegView view = RegView::View64);
    // <path> below an already open key (kLocalMachine included).
    Registry(HKey parent, const std::string& path, RegState state, RegView view = RegView::View64);
    ~Registry();
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    bool isOpen() const { return static_cast<bool>(key_); }
    HKey handle() const { return key_.get(); }

    // Exact, case-sensitive match over the enumerated value names (names up
    // to 1024 characters), unlike the store's own lookups.
    bool valueExists(const std::string& name) const;
    // Subkey name at index, read with an 80-character buffer: a name of 80
    // characters or more ends the enumeration as the end would (empty).
    void enumKey(std::uint32_t index, std::string& out) const;
    std::string enumKey(std::uint32_t index) const;
    // Every name enumKey gives from index 0 up to the first empty one, read
    // before the caller changes anything: each write makes the store read a
    // key's subkeys anew, so enumerating while writing costs a re-read per step.
    std::vector<std::string> subkeyNames() const;
    // Changes whenever the key's list of subkeys may have changed, through
    // this process or another; 0 when the key is not open. For keeping
    // something computed from the subkeys (see SubkeyMemo).
    std::uint64_t subkeyStamp() const;
    // Value name at index (80-character buffer) and its type; empty at the end.
    void enumValue(std::uint32_t index, std::string& name, RegType& type) const;
    // Deletes subKey with everything below it; returns the status of the
    // final delete of subKey itself.
    RegResult deleteTree(const std::string& subKey) const;

    void setString(const std::string& name, const std::string& value) const;
    // Reads into a zeroed 256-byte buffer: a value of 256 bytes or more does
    // not fit and reads as empty, as does a missing value.
    void getString(const std::string& name, std::string& out) const;
    std::string getString(const std::string& name) const;
    void setBool(const std::string& name, bool value) const;
    void getBool(const std::string& name, int* out) const;
    int getBool(const std::string& name) const;
    void setDword(const std::string& name, std::uint32_t value) const;
    void getDword(const std::string& name, std::uint32_t* out) const;
    // Raw bytes with their type, for copying values whatever they hold.
    bool getRaw(const std::string& name, RegType& type, std::string& bytes) const;
    void deleteValue(const std::string& name) const;

private:
    void open(HKey parent, const std::string& path, RegState state, RegView view);
    StoreBackend& store() const { return key_.store(); }

    StoreKey key_;
};

}  // namespace braxcfg::platform
