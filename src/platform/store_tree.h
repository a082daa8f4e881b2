#pragma once
// Deleting a key with everything below it, as RegDeleteTree does.
#include <string>

#include "platform/store_backend.h"

namespace braxcfg::platform {

// Deletes `path` below `parent` with everything beneath it; a missing key
// is kErrorFileNotFound. Walks without recursion, so any depth is safe;
// subkey names of any length are seen.
RegResult deleteKeyTree(StoreBackend& store, HKey parent, const std::string& path);

}  // namespace braxcfg::platform
