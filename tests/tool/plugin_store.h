#pragma once
// One store and one loaded plug-in for the whole test program: the plug-in
// opens the store named by BRAXCFG_STORE once, as it does in a host, so
// every test of the program shares them and starts by clearing the
// interfaces.
#include "plugin.h"
#include "temp_store.h"

namespace braxcfg::test {

struct PluginStore {
    PluginStore();
    TempStore store;
    tool::Plugin plugin;
};

// Created on first use, with the product's VISA marked present.
PluginStore& pluginStore();

// Removes every INTF<n> key of the store.
void clearInterfaces();

}  // namespace braxcfg::test
