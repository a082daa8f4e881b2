#include "visacore/visa_api.h"

#include <cstdlib>
#include <memory>
#include <mutex>

#include "platform/debug_output.h"
#include "visacore/builtin_visa.h"
#include "visacore/system_visa.h"

namespace braxcfg::visa {
namespace {

constexpr const char* kLibraryVariable = "BRAXCFG_VISA_LIBRARY";
constexpr const char* kBuiltinChoice = "builtin";

std::unique_ptr<VisaLibrary> chooseLibrary() {
    const char* requested = std::getenv(kLibraryVariable);
    const std::string choice = requested != nullptr ? requested : "";
    if (choice == kBuiltinChoice) return makeBuiltinVisa();
    std::string error;
    if (!choice.empty()) {
        if (auto library = loadSystemVisa(choice, error)) return library;
        platform::debugOutput(std::string(kLibraryVariable) + ": " + error + "; using the built-in VISA\n");
        return makeBuiltinVisa();
    }
    for (const std::string& path : standardVisaLocations()) {
        if (auto library = loadSystemVisa(path, error)) return library;
    }
    return makeBuiltinVisa();
}

struct ActiveLibrary {
    std::mutex mutex;
    std::shared_ptr<VisaLibrary> library;
};

ActiveLibrary& active() {
    static ActiveLibrary state;
    return state;
}

// Shared, so a call in progress keeps its library even while another thread
// reselects.
std::shared_ptr<VisaLibrary> library() {
    ActiveLibrary& state = active();
    std::lock_guard lock(state.mutex);
    if (!state.library) state.library = chooseLibrary();
    return state.library;
}

}  // namespace

ViStatus viOpenDefaultRM(ViSession* session) { return library()->openDefaultRM(session); }

ViStatus viClose(ViObject object) { return library()->close(object); }

ViStatus viStatusDesc(ViObject object, ViStatus status, ViChar desc[]) {
    return library()->statusDesc(object, status, desc);
}

ViStatus viProbeRsrc(ViSession rm, ViAttr selector, const char* resource) {
    return viProbeRsrc(rm, selector, resource, ProbeControl{});
}

ViStatus viProbeRsrc(ViSession rm, ViAttr selector, const char* resource, const ProbeControl& control) {
    if (selector != kResourceProbeSelector) return VI_ERROR_NSUP_OPER;
    return library()->probe(rm, resource, control);
}

std::string activeVisaLocation() { return library()->location(); }

void reselectVisaLibrary() {
    std::shared_ptr<VisaLibrary> chosen = chooseLibrary();
    ActiveLibrary& state = active();
    std::lock_guard lock(state.mutex);
    state.library = std::move(chosen);
}

}  // namespace braxcfg::visa
