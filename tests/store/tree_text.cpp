#include "tree_text.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "platform/registry.h"
#include "platform/store.h"
#include "store_builder.h"

namespace braxcfg::test {
namespace {

using platform::currentStore;
using platform::kErrorSuccess;

std::string hexBytes(const std::vector<std::uint8_t>& data, std::uint32_t size) {
    std::string text;
    for (std::uint32_t i = 0; i < size; ++i) {
        char hex[4];
        std::snprintf(hex, sizeof hex, i ? " %02x" : "%02x", data[i]);
        text += hex;
    }
    return text;
}

// Strings with exactly their terminator and four-byte numbers read as
// such; everything else shows its type number and bytes.
std::string valueText(platform::RegType type, const std::vector<std::uint8_t>& data, std::uint32_t size) {
    if (type == platform::kRegSz && size > 0 && data[size - 1] == 0 &&
        std::find(data.begin(), data.begin() + size - 1, 0) == data.begin() + size - 1)
        return "sz \"" + std::string(data.begin(), data.begin() + size - 1) + "\"";
    if (type == platform::kRegDword && size == 4) {
        char number[24];
        std::snprintf(number, sizeof number, "dword 0x%08x",
                      static_cast<unsigned>(data[0] | data[1] << 8 | data[2] << 16 | data[3] << 24));
        return number;
    }
    if (type == platform::kRegBinary) return "binary " + hexBytes(data, size);
    return "type " + std::to_string(type) + " " + hexBytes(data, size);
}

void appendKey(platform::HKey key, const std::string& path, std::string& out) {
    out += "[" + path + "]\n";
    std::vector<char> name(platform::kMaxValueNameLength + 1);
    std::vector<std::uint8_t> data(1 << 16);
    for (std::uint32_t i = 0;; ++i) {
        auto cch = static_cast<std::uint32_t>(name.size());
        auto cb = static_cast<std::uint32_t>(data.size());
        platform::RegType type = 0;
        if (currentStore().enumValue(key, i, name.data(), &cch, &type, data.data(), &cb) != kErrorSuccess) break;
        out += "  \"" + std::string(name.data(), cch) + "\" " + valueText(type, data, cb) + "\n";
    }
    std::vector<std::string> children;
    char child[platform::kMaxKeyNameLength + 1];
    while (currentStore().enumKey(key, static_cast<std::uint32_t>(children.size()), child, sizeof child) ==
           kErrorSuccess)
        children.emplace_back(child);
    for (const std::string& name : children) {
        const platform::Registry sub(key, name, platform::kRegOpenExisting);
        appendKey(sub.handle(), path.empty() ? name : path + "\\" + name, out);
    }
}

}  // namespace

std::string treeText(const std::string& sub) {
    const platform::Registry key(platform::kLocalMachine, underProduct(sub), platform::kRegOpenExisting);
    if (!key.isOpen()) return "<missing>";
    std::string out;
    appendKey(key.handle(), "", out);
    return out;
}

}  // namespace braxcfg::test
