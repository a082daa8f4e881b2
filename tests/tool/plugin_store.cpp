#include "plugin_store.h"

#include <cstdlib>

#include "platform/registry.h"
#include "store_builder.h"
#include "tree_text.h"

namespace braxcfg::test {

// The store is created before the plug-in is loaded and named to it first.
PluginStore::PluginStore() : store(), plugin((setenv("BRAXCFG_STORE", store.path().c_str(), 1), tool::Plugin())) {
    putDword(underProduct(), "LinkbaseVisaPresent", 1);
}

PluginStore& pluginStore() {
    static PluginStore* shared = new PluginStore();  // kept to the end: the plug-in's dialogs may outlive tests
    return *shared;
}

void clearInterfaces() {
    for (const std::string& key : platform::Registry("", platform::kRegOpenExisting).subkeyNames())
        if (key.starts_with("INTF")) putTree("[-" + key + "]\n");
}

}  // namespace braxcfg::test
