#pragma once
// Writing the store, or one key of it, as .reg text (layout in
// reg_writer.h): keys in pre-order, subkeys and values in the order the
// store enumerates them, all read inside one transaction so that the file
// is one consistent picture even while another process writes.
#include <optional>
#include <string>
#include <string_view>

#include "platform/regfile/reg_writer.h"
#include "platform/store_backend.h"

namespace braxcfg::platform::regfile {

struct RegExportResult {
    std::string bytes;                 // the encoded file
    std::optional<std::string> error;  // why there is none
};

// keyPath is a full path ("HKEY_LOCAL_MACHINE\SOFTWARE\x"); empty exports
// the whole store. The starting key is written as spelled here, the keys
// below it as the store spells them.
RegExportResult exportRegFile(StoreBackend& store, std::string_view keyPath, RegTextEncoding encoding);

}  // namespace braxcfg::platform::regfile
