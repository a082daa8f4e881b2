#pragma once
// A chain of keys far deeper than the registry allows (only a foreign tool
// makes one), for the tests that every walk over the store survives it.
#include "platform/store.h"
#include "store_access.h"

namespace braxcfg::test {

// `levels` keys named "k", each below the one before, the first below `top`;
// created one level at a time, so that no path is ever deep, in one
// transaction. False when the store refused it.
inline bool createKeyChain(platform::HKey top, int levels) {
    platform::StoreBackend& store = platform::currentStore();
    platform::StoreTransaction transaction;
    platform::HKey key = createKey(store, "", top);
    for (int i = 0; i < levels; ++i) {
        const platform::HKey next = createKey(store, "k", key);
        store.closeKey(key);
        key = next;
    }
    store.closeKey(key);
    return transaction.commit();
}

}  // namespace braxcfg::test
