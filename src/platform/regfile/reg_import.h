#pragma once
// Applying a .reg file to the store. The file is merged into what the store
// holds: keys and values are created or replaced, [-key] and "name"=- delete.
// Nothing else is written: no product key is computed, no parent but those
// the file names is touched.
//
// All or nothing: the operations run in one store transaction, and the
// first malformed line, or the first operation the store refuses, rolls it
// back and is reported with its line.
#include <optional>
#include <string_view>
#include <vector>

#include "platform/regfile/reg_parser.h"
#include "platform/store_backend.h"

namespace braxcfg::platform::regfile {

std::optional<RegError> applyRegOps(StoreBackend& store, const std::vector<RegOp>& ops);

// Parses the bytes of a file (see reg_parser.h) and applies them.
std::optional<RegError> importRegFile(StoreBackend& store, std::string_view bytes);

}  // namespace braxcfg::platform::regfile
