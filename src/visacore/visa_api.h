#pragma once
// The VISA core services the configuration dialogs call. They go to the
// system's VISA library when one is found, otherwise to the built-in
// implementation:
//   BRAXCFG_VISA_LIBRARY=/abs/path/libvisa.so  that library
//   BRAXCFG_VISA_LIBRARY=builtin               always the built-in one
//   unset or empty                             the first of
//                                              standardVisaLocations() that
//                                              loads, else the built-in one
// A library that cannot be loaded, or a relative path, falls back to the
// built-in implementation with one line on the debug output.
#include <string>

#include "visacore/visa_library.h"

namespace braxcfg::visa {

// Selector of the resource probe, from the vendor-specific attribute range.
inline constexpr ViAttr kResourceProbeSelector = 0x3FFF0F01u;

ViStatus viOpenDefaultRM(ViSession* session);
ViStatus viClose(ViObject object);
// Writes the description of `status` into `desc`, which must hold
// kStatusDescLength bytes. VI_WARN_UNKNOWN_STATUS for a code the
// implementation does not know (the text then names the number).
ViStatus viStatusDesc(ViObject object, ViStatus status, ViChar desc[]);

// The resource probe: negative when `resource` cannot be located, exactly
// VI_ERROR_RSRC_NFOUND when its host answered without it, VI_SUCCESS or a
// warning when it was found. `rm` is a default resource manager session;
// any selector but kResourceProbeSelector gives VI_ERROR_NSUP_OPER.
ViStatus viProbeRsrc(ViSession rm, ViAttr selector, const char* resource);
ViStatus viProbeRsrc(ViSession rm, ViAttr selector, const char* resource, const ProbeControl& control);

// The file of the VISA library in use; empty for the built-in one.
std::string activeVisaLocation();

// Chooses the implementation again from the environment (the choice is
// otherwise made once, at first use). Sessions of the previous one are
// gone.
void reselectVisaLibrary();

}  // namespace braxcfg::visa
