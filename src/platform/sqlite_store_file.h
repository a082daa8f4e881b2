#pragma once
// Opening a store file: creating it when missing, refusing a file that is
// not a store or is damaged without writing to it, and opening read-only a
// file this user cannot write.
#include <memory>
#include <string>

#include "platform/store.h"

namespace braxcfg::platform {

struct SqliteStoreOpening {
    StoreStatus status;
    std::unique_ptr<StoreBackend> backend;  // set only when status.state is Open
};

SqliteStoreOpening openSqliteStore(const std::string& path);

}  // namespace braxcfg::platform
