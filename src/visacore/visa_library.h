#pragma once
// A VISA implementation the core services hand their calls to: the system's
// VISA library when one is installed, otherwise the built-in one.
#include <chrono>
#include <string>

#include "visacore/cancel_token.h"
#include "visacore/visa_types.h"

namespace braxcfg::visa {

// How one probe runs. A zero timeout means the product setting.
struct ProbeControl {
    std::chrono::milliseconds timeout{0};
    const CancelToken* cancel = nullptr;  // honoured by the built-in probe only
};

class VisaLibrary {
public:
    virtual ~VisaLibrary() = default;
    virtual ViStatus openDefaultRM(ViSession* session) = 0;
    virtual ViStatus close(ViObject object) = 0;
    // `desc` holds at least kStatusDescLength bytes.
    virtual ViStatus statusDesc(ViObject object, ViStatus status, ViChar* desc) = 0;
    // Locates `resource` through the default resource manager session `rm`.
    virtual ViStatus probe(ViSession rm, const char* resource, const ProbeControl& control) = 0;
    // The shared library's file; empty for the built-in implementation.
    virtual std::string location() const = 0;
};

// VISA's buffer size for viStatusDesc, terminator included.
inline constexpr std::size_t kStatusDescLength = 256;

}  // namespace braxcfg::visa
