#pragma once
// Splitting a relative key path into its names: runs of "\" separate,
// trailing "\" are ignored, a leading "\" is a bad path name, and a name
// longer than kMaxKeyNameLength is an invalid parameter.
#include <string_view>
#include <vector>

#include "platform/reg_types.h"

namespace braxcfg::platform {

// Null or empty gives no names (the key itself). `names` points into `path`.
RegResult splitKeyPath(const char* path, std::vector<std::string_view>* names);

}  // namespace braxcfg::platform
