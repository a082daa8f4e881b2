#pragma once
// Names and standard descriptions of the VISA completion and error codes.
#include <span>
#include <string>

#include "visacore/visa_types.h"

namespace braxcfg::visa {

struct StatusText {
    ViUInt32 code;            // the status as its 32-bit pattern
    const char* name;         // "VI_ERROR_TMO"
    const char* description;  // the standard sentence, ending in a full stop
};

// Every code the table knows, in ascending order of the 32-bit pattern.
std::span<const StatusText> statusTexts();

// The entry for `status`, or null when it is not a known VISA code.
const StatusText* findStatusText(ViStatus status);

// The standard description of `status`; a code outside the table gets a
// generic sentence that names its number, so a caller always has text.
std::string statusDescription(ViStatus status);

// The status as its 32-bit pattern in hex: "0xBFFF0011".
std::string statusCodeText(ViStatus status);

}  // namespace braxcfg::visa
