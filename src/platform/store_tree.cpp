#include "platform/store_tree.h"

#include <array>
#include <memory>
#include <vector>

#include "platform/regfile/store_key.h"

namespace braxcfg::platform {

RegResult deleteKeyTree(StoreBackend& store, HKey parent, const std::string& path) {
    // Depth first without recursion, so no depth of tree can exhaust the
    // stack. Each key's subkey names are read once before any is deleted.
    struct Level {
        std::unique_ptr<regfile::ScopedKey> key;
        std::string name;  // below the level above (path for the first)
        std::vector<std::string> children;
        std::size_t next = 0;
    };
    std::vector<Level> levels;
    const auto enter = [&](HKey above, const std::string& name) {
        Level level{std::make_unique<regfile::ScopedKey>(store), name, {}};
        const RegResult opened = store.openKey(above, name.c_str(), kKeyAllAccess, level.key->receive());
        if (opened != kErrorSuccess) return opened;
        std::array<char, kMaxKeyNameLength + 1> child{};
        for (std::uint32_t index = 0;
             store.enumKey(level.key->get(), index, child.data(), static_cast<std::uint32_t>(child.size())) ==
             kErrorSuccess;
             ++index)
            level.children.emplace_back(child.data());
        levels.push_back(std::move(level));
        return kErrorSuccess;
    };
    if (const RegResult opened = enter(parent, path); opened != kErrorSuccess) return opened;
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next < level.children.size()) {
            const std::string child = level.children[level.next++];
            if (const RegResult opened = enter(level.key->get(), child); opened != kErrorSuccess) return opened;
            continue;
        }
        const std::string name = level.name;
        levels.pop_back();
        if (const RegResult deleted = store.deleteKey(levels.empty() ? parent : levels.back().key->get(), name.c_str());
            deleted != kErrorSuccess)
            return deleted;
    }
    return kErrorSuccess;
}

}  // namespace braxcfg::platform
