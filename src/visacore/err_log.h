#pragma once
// errLog: records one formatted diagnostic line on the debug output and
// hands back the status it was given, so callers can write
// `return errLog(VI_ERROR_ALLOC, "...", ...)`.
#include "visacore/visa_types.h"

namespace braxcfg::visa {

ViStatus errLog(ViStatus status, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace braxcfg::visa
