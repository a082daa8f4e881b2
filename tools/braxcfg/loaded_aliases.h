#pragma once
// The aliases of the store's alias lists, loaded for one command and freed
// with it.
#include <string>

#include "tcpip/alist.h"

namespace braxcfg::tool {

class LoadedAliases {
public:
    LoadedAliases() { list_.load(); }
    ~LoadedAliases() { list_.deleteRecords(); }
    LoadedAliases(const LoadedAliases&) = delete;
    LoadedAliases& operator=(const LoadedAliases&) = delete;

    tcpip::AList& list() { return list_; }
    // The alias named `name` (system text; names ignore case), or null.
    tcpip::AliasEntry* named(const std::string& name) {
        const tcpip::AliasEntry probe(name, std::nullopt, std::nullopt);
        return list_.findDuplicate(&probe);
    }

private:
    tcpip::AList list_;
};

}  // namespace braxcfg::tool
