#pragma once
// The core library's view of the VISA configuration. It can be kept in the
// configuration store or in an INI file below the product's base directory;
// callers build one store-wide object and one object per interface of the
// kind useRegistry() names, and use both only through this interface.
#include "visacore/visa_types.h"

namespace braxcfg::visa {

// Room a caller gives getKorlIntfName: 255 characters and the terminator.
inline constexpr unsigned kConfigTextChars = 256;

class BaseVISAConfig {
public:
    virtual ~BaseVISAConfig() = default;

    // The interface's name on the KORL side into `buf` (kConfigTextChars),
    // "" when it has none. A store-wide object names no interface.
    virtual char* getKorlIntfName(char* buf);
    // Whether the interface is exported; only the low 16 bits count.
    virtual ViUInt32 isExportEnabled();
};

}  // namespace braxcfg::visa
