#pragma once
// The interface types, each once: the word that resource strings and the
// store's "VISAIntfType" use, and its VISA interface type number.
#include <string_view>

#include "visacore/visa_types.h"

namespace braxcfg::visa {

struct InterfaceType {
    std::string_view word;
    ViUInt16 number;
};

inline constexpr InterfaceType kInterfaceTypes[] = {
    {"GPIB", VI_INTF_GPIB}, {"VXI", VI_INTF_VXI},     {"GPIB-VXI", VI_INTF_GPIB_VXI}, {"ASRL", VI_INTF_ASRL},
    {"PXI", VI_INTF_PXI},   {"TCPIP", VI_INTF_TCPIP}, {"USB", VI_INTF_USB},           {"RSIB", VI_INTF_RSIB},
};

// What a word that names no interface type reads as.
inline constexpr ViUInt16 kIntfUnknown = 0;

// The number of a type word, compared exactly (upper case, no blanks);
// kIntfUnknown for any other word.
constexpr ViUInt16 interfaceTypeOf(std::string_view word) {
    for (const InterfaceType& type : kInterfaceTypes)
        if (word == type.word) return type.number;
    return kIntfUnknown;
}

}  // namespace braxcfg::visa
