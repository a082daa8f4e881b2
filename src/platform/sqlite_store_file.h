#pragma once
// Opening a store file: creating it when missing (unless only reading),
// refusing a file that is not a store or is damaged without writing to it,
// and opening read-only a file this user cannot write or only reads.
#include <memory>
#include <string>

#include "platform/store_backend.h"
#include "platform/store_status.h"

namespace braxcfg::platform {

struct SqliteStoreOpening {
    StoreStatus status;
    std::unique_ptr<StoreBackend> backend;  // set only when status.state is Open
};

SqliteStoreOpening openSqliteStore(const std::string& path, StoreAccess access = StoreAccess::Change);

}  // namespace braxcfg::platform
