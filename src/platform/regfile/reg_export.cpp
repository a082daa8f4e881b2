#include "platform/regfile/reg_export.h"

#include <array>
#include <vector>

#include "platform/regfile/reg_path.h"
#include "platform/regfile/store_key.h"
#include "platform/store.h"

namespace braxcfg::platform::regfile {
namespace {

constexpr RegAccess kKeyRead = 0x20019;  // KEY_READ

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
    bool exportSubkeys(HKey key, const std::string& relativePath);

    StoreBackend& store_;
    RegWriter writer_;
    std::vector<char> name_ = std::vector<char>(kMaxValueNameLength + 1);
    std::vector<std::uint8_t> data_ = std::vector<std::uint8_t>(256);
    std::string error_;
};

bool RegExporter::exportKey(HKey key, const std::string& relativePath) {
    writer_.key(relativePath);
    return exportValues(key, relativePath) && exportSubkeys(key, relativePath);
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

bool RegExporter::exportSubkeys(HKey key, const std::string& relativePath) {
    std::array<char, kMaxKeyNameLength + 1> name{};
    for (std::uint32_t index = 0;; ++index) {
        const RegResult r = store_.enumKey(key, index, name.data(), static_cast<std::uint32_t>(name.size()));
        if (r == kErrorNoMoreItems) return true;
        if (r != kErrorSuccess) return fail("list the subkeys of", relativePath, r);
        const std::string childPath = relativePath.empty() ? name.data() : relativePath + "\\" + name.data();
        ScopedKey child(store_);
        if (const RegResult opened = store_.openKey(key, name.data(), kKeyRead, child.receive()); opened != kErrorSuccess)
            return fail("open", childPath, opened);
        if (!exportKey(child.get(), childPath)) return false;
    }
}

}  // namespace

RegExportResult exportRegFile(StoreBackend& store, std::string_view keyPath, RegTextEncoding encoding) {
    RegExportResult result;
    const SplitKeyPath path = splitKeyPath(keyPath.empty() ? kLocalMachineName : keyPath);
    if ((result.error = rootProblem(path))) return result;
    // Reads inside one transaction see one state of the store.
    StoreTransaction transaction(store);
    ScopedKey start(store);
    if (const RegResult opened = store.openKey(kLocalMachine, path.relative.c_str(), kKeyRead, start.receive());
        opened != kErrorSuccess) {
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
