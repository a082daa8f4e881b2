#pragma once
// The VISA implementation of our own: a small session table for default
// resource manager sessions, the standard status descriptions, and the
// built-in LAN probe.
#include <memory>

#include "visacore/visa_library.h"

namespace braxcfg::visa {

std::unique_ptr<VisaLibrary> makeBuiltinVisa();

}  // namespace braxcfg::visa
