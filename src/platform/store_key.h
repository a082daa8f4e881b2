#pragma once
// StoreKey: the one owner of an open store key. Registry, the product key
// and settings, the .reg import and export, renames and tree deletion all
// hold the keys they open in one, so no path through them leaks a handle.
//
// Contract:
// - the key held is closed when the holder goes out of scope, is reset, or
//   opens another; the predefined root kLocalMachine is never closed;
// - a failed open leaves the holder empty; every call on an empty holder
//   fails (reads give false or nothing, writes kErrorInvalidHandle) and
//   reaches no store;
// - a holder can be moved (the handle goes with it), never copied.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/reg_types.h"
#include "platform/store_backend.h"

namespace braxcfg::platform {

class StoreKey {
public:
    // An empty holder on the process's store, or on `store`.
    StoreKey();
    explicit StoreKey(StoreBackend& store) : store_(&store) {}
    ~StoreKey() { reset(); }
    StoreKey(StoreKey&& other) noexcept;
    StoreKey& operator=(StoreKey&& other) noexcept;
    StoreKey(const StoreKey&) = delete;
    StoreKey& operator=(const StoreKey&) = delete;

    // Close what is held, then open `path` below `parent` (an empty path: a
    // second handle on parent). The store's answer is returned.
    RegResult open(HKey parent, const std::string& path, RegAccess access);
    // The same, creating the key and its missing parents.
    RegResult create(HKey parent, const std::string& path, RegAccess access);
    // A holder on the process's store with `path` open below `parent`, in
    // the 64-bit view; empty when the key cannot be opened.
    static StoreKey opened(HKey parent, const std::string& path, RegAccess access);
    // Opens, else creates; a failure leaves "Error creating <path> key" on
    // the debug output.
    RegResult openOrCreate(HKey parent, const std::string& path, RegAccess access);

    explicit operator bool() const { return key_ != kNoKey; }
    HKey get() const { return key_; }
    StoreBackend& store() const { return *store_; }
    void reset();

    // Value `name` read into a zeroed buffer of `capacity` bytes, as a
    // caller with a fixed buffer reads it: false when it is missing or
    // larger (`bytes` is then undefined).
    bool readInto(const std::string& name, std::uint32_t capacity, RegType& type, std::string& bytes) const;
    // Value `name` whole, whatever its size; false when it is missing.
    bool readBytes(const std::string& name, RegType& type, std::string& bytes) const;
    // Writes the bytes as given (REG_SZ callers include the terminator).
    RegResult setBytes(const std::string& name, RegType type, std::string_view bytes) const;
    // Writes REG_SZ text with its terminator.
    RegResult setText(const std::string& name, const std::string& text) const;
    RegResult deleteValue(const std::string& name) const;

    struct ValueName {
        std::string name;
        RegType type = kRegNone;
    };
    // Every value's name and type in the store's order, names of any length.
    std::vector<ValueName> valueNames() const;
    // Every subkey name in the store's order, names of any length.
    std::vector<std::string> subkeyNames() const;

private:
    // Closes the key held so far and gives the slot to a backend open or
    // create call.
    HKey* receive();

    StoreBackend* store_;
    HKey key_ = kNoKey;
};

// The text of REG_SZ bytes: up to the first NUL.
std::string textOf(const std::string& bytes);

// Deletes `path` below `parent` with everything beneath it, as
// RegDeleteTree does; a missing key is kErrorFileNotFound. A key with
// nothing below it goes in one call; otherwise the tree is walked without
// recursion, so any depth is safe, and subkey names of any length are seen.
RegResult deleteKeyTree(StoreBackend& store, HKey parent, const std::string& path);

}  // namespace braxcfg::platform
