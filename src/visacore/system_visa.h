#pragma once
// A VISA library installed on the system, used through dlopen. Its
// resource manager, status texts and session handling replace ours; the
// probe becomes an open and close of the resource, whose status is the
// library's own answer.
#include <memory>
#include <string>
#include <vector>

#include "visacore/visa_library.h"

namespace braxcfg::visa {

// The absolute paths where a system VISA library is looked for, in order.
std::vector<std::string> standardVisaLocations();

// Loads the library at `path` when it exports viOpenDefaultRM, viOpen,
// viClose and viStatusDesc; null (with `error` set) otherwise.
std::unique_ptr<VisaLibrary> loadSystemVisa(const std::string& path, std::string& error);

}  // namespace braxcfg::visa
