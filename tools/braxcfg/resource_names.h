#pragma once
// A resource string through IoParms: its parse status and the names it has.
#include <string>

#include "visacore/visa_types.h"

namespace braxcfg::tool {

struct ResourceNames {
    visa::ViStatus status = 0;  // the parse status; negative: not a resource string
    std::string canonical;      // empty when it did not parse
    std::string alternate;      // empty when there is none
};

// `text` is system text; so are the names.
ResourceNames resourceNames(const std::string& text);

}  // namespace braxcfg::tool
