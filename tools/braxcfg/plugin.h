#pragma once
// The plug-in as a host loads it: dlopen of libbraxcfg.so and dlsym of its
// exports, never a direct link, so the tool exercises what a host sees.
#include <string>

#include "braxcfg/braxcfg.h"

namespace braxcfg::tool {

// Adds the folder the plug-in is installed in (../lib beside the tool) to
// BRAXCFG_MODULE_PATH, after the entries already there, so that searches
// the tool runs itself find the modules shipped beside the plug-in, as the
// plug-in's own searches do.
void addPluginFolderToModulePath();

class Plugin {
public:
    // Looks in $BRAXCFG_PLUGIN, next to the tool (../lib), then the build tree.
    Plugin();
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    bool loaded() const { return handle_ != nullptr; }
    const std::string& error() const { return error_; }
    // The export `name`, or null (with error() set) when missing.
    void* symbol(const char* name);

    template <typename Fn>
    Fn* get(const char* name) {
        return reinterpret_cast<Fn*>(symbol(name));
    }

private:
    void* handle_ = nullptr;
    std::string error_;
};

}  // namespace braxcfg::tool
