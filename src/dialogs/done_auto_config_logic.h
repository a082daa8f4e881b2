#pragma once
// The auto-configuration search that CDoneAutoConfig runs while it opens,
// free of any window so that tests and the tool drive it as well.
//
// The search asks the "AUTOCF" module for the devices on one interface and
// keeps those that are not known yet. Known devices and the place new ones
// go are the caller's (AutoConfigDevices): the interface's device entries
// (store mode) or the device list dialog's items (list mode).
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "visacore/visa_types.h"

namespace braxcfg::store {
class ConfigStore;
}

namespace braxcfg::dialogs {

// Shown as the only item of the new-device list after a search that found
// nothing new.
inline constexpr const char* kNoNewDevicesFound = "<<no new devices found>>";

// Shown when the module reports VI_ERROR_RSRC_NFOUND: the interface's
// configuration has not reached the run time yet.
inline constexpr const char* kAutoAddErrorMessage =
    "Auto-Add encountered an error while trying to find devices.  If you have just installed the Linkbase, or "
    "if you have just changed any KORL parameters for this interface, you need to save all Quillon information "
    "by pressing 'OK' in all dialog boxes, then reboot your machine.  After rebooting, Auto-Add devices should "
    "work.";

// "VISA Error (0xbfff0015) occurred. " + description.
std::string visaErrorMessage(visa::ViStatus status, const std::string& description);

// The known devices, and where a new one goes.
class AutoConfigDevices {
public:
    virtual ~AutoConfigDevices() = default;
    // The known device names, read afresh at every call.
    virtual std::vector<std::string> knownDevices() const = 0;
    // Takes a device the search found that was not known. It counts as
    // known from then on.
    virtual void addNewDevice(const std::string& name) = 0;
};

// Store mode: the interface's device entries; a new device is written at
// once (no class filter).
class StoreDevices : public AutoConfigDevices {
public:
    StoreDevices(const store::ConfigStore& store, std::string intf);
    std::vector<std::string> knownDevices() const override;
    void addNewDevice(const std::string& name) override;

private:
    const store::ConfigStore& store_;
    std::string intf_;
};

// What the search calls outside itself. Production: the "AUTOCF" module
// through osLoadEntryPoint and the VISA core services. Tests replace them.
struct AutoConfigServices {
    // The module's entry point `name`, looked up afresh; null when absent.
    std::function<void*(const char* name)> loadEntryPoint;
    std::function<visa::ViStatus(visa::ViSession*)> openDefaultRM;
    std::function<visa::ViStatus(visa::ViObject)> close;
    std::function<std::string(visa::ViStatus)> statusDesc;
    // The system VISA library in use, "" for none.
    std::function<std::string()> visaLibrary;
};

const AutoConfigServices& autoConfigServices();
// Replaces the services (tests); returns the ones installed before.
AutoConfigServices setAutoConfigServices(AutoConfigServices services);

struct AutoConfigReport {
    // Tells the user about an error that ended the search (a message box).
    std::function<void(const std::string& text)> showMessage;
    // A new device was just found (progress on a terminal). May be empty.
    std::function<void(const std::string& name)> newDeviceFound;
};

struct AutoConfigResult {
    std::vector<std::string> knownDevices;  // known before the search, in their order
    std::vector<std::string> newDevices;    // newest first
};

// Searches interface `intf` (VISA name `visaName`). Never throws out of a
// module call; a missing module or entry point gives an empty search
// without a message.
AutoConfigResult runAutoConfigSearch(const std::string& intf, const std::string& visaName,
                                     AutoConfigDevices& devices, const AutoConfigReport& report);

// The two lists as the result dialog shows them: the known devices, and the
// new ones or the one disabled "<<no new devices found>>" item.
struct DoneAutoConfigLists {
    std::vector<std::string> known;
    std::vector<std::string> found;
    bool foundEnabled = true;
};
DoneAutoConfigLists doneAutoConfigLists(const AutoConfigResult& result);

}  // namespace braxcfg::dialogs
