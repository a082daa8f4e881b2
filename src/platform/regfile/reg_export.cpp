#include "platform/regfile/reg_export.h"

#include <algorithm>
#include <array>
#include <vector>

#include "platform/regfile/reg_format.h"
#include "platform/store.h"
#include "platform/store_key.h"

namespace braxcfg::platform::regfile {
namespace {

class RegExporter {
public:
    RegExporter(StoreBackend& store, RegTextEncoding encoding) : store_(store), writer_(encoding) {}

    // Writes the key open as `key` and everything below it.
    bool exportKey(HKey key, const std::string& relativePath);
    std::string finish() { return writer_.finish(); }
    const std::string& error() const { return error_; }

private:
    bool fail(const std::string& what, const std::string& relativePath, RegResult result) {
        error_ = "cannot " + what + " " + fullKeyPath(relativePath) + ": " + storeResultText(result);
        return false;
    }
    bool exportValues(HKey key, const std::string& relativePath);

    StoreBackend& store_;
    RegWriter writer_;
    std::vector<char> name_ = std::vector<char>(kMaxValueNameLength + 1);
    std::vector<std::uint8_t> data_ = std::vector<std::uint8_t>(256);
    std::string error_;
};

// Pre-order without recursion: one open key per level from `key` down, each
// with the index of its next subkey. A tree deeper than the registry allows
// is refused, not written.
bool RegExporter::exportKey(HKey key, const std::string& relativePath) {
    struct Level {
        StoreKey owned;  // empty for the caller's key
        HKey key;
        std::string path;
        std::uint32_t nextChild = 0;
    };
    std::vector<Level> levels;
    levels.push_back(Level{StoreKey(store_), key, relativePath});
    const std::size_t startDepth =
        relativePath.empty() ? 0 : 1 + static_cast<std::size_t>(std::count(relativePath.begin(), relativePath.end(), '\\'));
    writer_.key(relativePath);
    if (!exportValues(key, relativePath)) return false;
    std::array<char, kMaxKeyNameLength + 1> name{};
    while (!levels.empty()) {
        Level& level = levels.back();
        const RegResult r = store_.enumKey(level.key, level.nextChild, name.data(), static_cast<std::uint32_t>(name.size()));
        if (r == kErrorNoMoreItems) {
            levels.pop_back();
            continue;
        }
        if (r != kErrorSuccess) return fail("list the subkeys of", level.path, r);
        ++level.nextChild;
        // Deeper keys could not be imported again; a foreign tool made them.
        if (startDepth + levels.size() >= kMaxKeyDepth) {
            error_ = "cannot export " + fullKeyPath(level.path) + ": its keys go deeper than the " +
                     std::to_string(kMaxKeyDepth) + " levels the registry allows";
            return false;
        }
        std::string childPath = level.path.empty() ? name.data() : level.path + "\\" + name.data();
        StoreKey child(store_);
        if (const RegResult opened = child.open(level.key, name.data(), kKeyRead); opened != kErrorSuccess)
            return fail("open", childPath, opened);
        const HKey childKey = child.get();
        writer_.key(childPath);
        if (!exportValues(childKey, childPath)) return false;
        levels.push_back(Level{std::move(child), childKey, std::move(childPath)});
    }
    return true;
}

bool RegExporter::exportValues(HKey key, const std::string& relativePath) {
    for (std::uint32_t index = 0;;) {
        auto cchName = static_cast<std::uint32_t>(name_.size());
        auto cbData = static_cast<std::uint32_t>(data_.size());
        RegType type = kRegNone;
        const RegResult r = store_.enumValue(key, index, name_.data(), &cchName, &type, data_.data(), &cbData);
        if (r == kErrorNoMoreItems) return true;
        if (r == kErrorMoreData && cbData > data_.size()) {
            data_.resize(cbData);  // and ask for the same value again
            continue;
        }
        if (r != kErrorSuccess) return fail("read the values of", relativePath, r);
        writer_.value(std::string_view(name_.data(), cchName), type,
                      std::string_view(reinterpret_cast<const char*>(data_.data()), cbData));
        ++index;
    }
}

}  // namespace

RegExportResult exportRegFile(StoreBackend& store, std::string_view keyPath, RegTextEncoding encoding) {
    RegExportResult result;
    const SplitKeyPath path = splitKeyPath(keyPath.empty() ? kLocalMachineName : keyPath);
    if ((result.error = rootProblem(path))) return result;
    // Reads inside one transaction see one state of the store.
    StoreTransaction transaction(store);
    StoreKey start(store);
    if (const RegResult opened = start.open(kLocalMachine, path.relative, kKeyRead); opened != kErrorSuccess) {
        result.error = opened == kErrorFileNotFound ? "the key " + fullKeyPath(path.relative) + " does not exist"
                                                    : "cannot open " + fullKeyPath(path.relative) + ": " +
                                                          storeResultText(opened);
        return result;
    }
    RegExporter exporter(store, encoding);
    if (!exporter.exportKey(start.get(), path.relative)) {
        result.error = exporter.error();
        return result;
    }
    result.bytes = exporter.finish();
    return result;
}

}  // namespace braxcfg::platform::regfile
