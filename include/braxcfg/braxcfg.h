/* braxcfg: configuration plug-in for VISA instrument I/O interfaces.
 *
 * A configuration tool loads the plug-in and calls these seven functions
 * for each interface it lists, naming the interface by its key in the VISA
 * configuration store ("INTF0", "INTF1", ...). No function reports an
 * error: a missing or unreadable interface reads as an invalid one. Calls
 * are expected one at a time on the tool's user-interface thread.
 */
#ifndef BRAXCFG_BRAXCFG_H
#define BRAXCFG_BRAXCFG_H

#ifdef _WIN32
#include <windows.h>
#define BRAXCFG_API __declspec(dllexport)
#else
/* The host's native window handle, opaque; null means "no owner". */
typedef void* HWND;
#define BRAXCFG_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* 1 when the tool may offer "edit" for the interface, else 0. */
BRAXCFG_API int isVisaIntfEditable(const char* intf);
/* 1 when the interface key holds a non-empty "VISAName", else 0. */
BRAXCFG_API int isValidVisaIntf(const char* intf);
/* 1 when this plug-in has already set the interface up, else 0. */
BRAXCFG_API int isVisaIntfSetup(const char* intf);
/* Called before the tool works on an interface; does nothing. */
BRAXCFG_API void doVisaStartStuff(const char* intf);
/* End of a configuration pass: brings every interface entry and the VISA
 * information block up to date. */
BRAXCFG_API void doVisaEndStuff(HWND parent);
/* Silent first set-up of a newly added interface. */
BRAXCFG_API void setupVisaIntf(HWND parent, const char* intf);
/* Opens the interface's device list dialog when it is editable. */
BRAXCFG_API void editVisaIntf(HWND parent, const char* intf);

#ifdef __cplusplus
}
#endif

#endif /* BRAXCFG_BRAXCFG_H */
