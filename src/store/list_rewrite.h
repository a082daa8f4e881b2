#pragma once
// A store operation that rewrites a list: all of it in one transaction, or
// nothing at all when the transaction cannot start or commit.
#include "platform/store.h"

namespace braxcfg::store {

template <typename Work>
platform::StoreFailure rewriteList(Work&& work) {
    platform::StoreTransaction transaction;
    if (!transaction.active()) return transaction.failure();
    work();
    return transaction.commit() ? platform::StoreFailure::None : transaction.failure();
}

}  // namespace braxcfg::store
