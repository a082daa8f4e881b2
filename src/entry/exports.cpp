// The plug-in's seven exports. Each is a thin shell: it turns its C
// arguments into the application object's, calls one method and hands the
// result back. Nothing thrown inside may reach the host.
#include "braxcfg/braxcfg.h"

#include <string>

#include "entry/braxcfg_app.h"
#include "entry/host_window.h"

namespace {

using braxcfg::entry::CBraxcfgApp;

// The one application object, alive from library load to unload.
CBraxcfgApp theApp;

std::string textOf(const char* intf) { return intf != nullptr ? std::string(intf) : std::string(); }

template <typename Fn>
auto guarded(Fn fn, decltype(fn()) onFailure) noexcept -> decltype(fn()) {
    try {
        return fn();
    } catch (...) {
        return onFailure;
    }
}

template <typename Fn>
void guardedVoid(Fn fn) noexcept {
    try {
        fn();
    } catch (...) {
    }
}

}  // namespace

extern "C" {

BRAXCFG_API int isVisaIntfEditable(const char* intf) {
    return guarded([&] { return theApp.IsVisaIntfEditable(textOf(intf)); }, 0);
}

BRAXCFG_API int isValidVisaIntf(const char* intf) {
    return guarded([&] { return theApp.IsValidVisaIntf(textOf(intf)); }, 0);
}

BRAXCFG_API int isVisaIntfSetup(const char* intf) {
    return guarded([&] { return theApp.IsVisaIntfSetup(textOf(intf)); }, 0);
}

BRAXCFG_API void doVisaStartStuff(const char* intf) {
    guardedVoid([&] { theApp.DoVisaStartStuff(textOf(intf)); });
}

BRAXCFG_API void doVisaEndStuff(HWND parent) {
    guardedVoid([&] { theApp.DoVisaEndStuff(braxcfg::entry::HostWindow(parent)); });
}

BRAXCFG_API void setupVisaIntf(HWND parent, const char* intf) {
    guardedVoid([&] { theApp.SetupVisaIntf(braxcfg::entry::HostWindow(parent), textOf(intf)); });
}

BRAXCFG_API void editVisaIntf(HWND parent, const char* intf) {
    guardedVoid([&] { theApp.EditVisaIntf(braxcfg::entry::HostWindow(parent), textOf(intf)); });
}

}  // extern "C"
