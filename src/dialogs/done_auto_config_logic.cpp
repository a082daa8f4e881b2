#include "dialogs/done_auto_config_logic.h"

#include <braxcfg/autocf.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "platform/product_settings.h"
#include "platform/registry.h"
#include "rsrc/io_parms.h"
#include "store/config_store.h"
#include "visacore/module_loader.h"
#include "visacore/visa_api.h"

namespace braxcfg::dialogs {
namespace {

using visa::ViStatus;

// The entry points of the "AUTOCF" module, by the names modules export.
constexpr const char* kResetEntry = "AUTOCF_autoConfigReset";
constexpr const char* kNextDevEntry = "AUTOCF_autoConfigNextDev";
constexpr const char* kDoneEntry = "AUTOCF_autoConfigDone";

// The resource string that makes a parse fail without a log line: the
// record then says "no further device".
constexpr const char* kNoDeviceName = "badRsrcName";

ViStatus parseInto(rsrc::IoParms& parms, const std::string& text) {
    std::vector<char> copy(text.begin(), text.end());
    copy.push_back('\0');
    return parms.parse(copy.data(), true);
}

AutoConfigServices productionServices() {
    AutoConfigServices services;
    services.loadEntryPoint = [](const char* name) -> void* {
        void* slot = nullptr;
        visa::osLoadEntryPoint("AUTOCF", name, &slot, visa::kLoadIfNeeded);
        return slot;
    };
    services.openDefaultRM = [](visa::ViSession* session) { return visa::viOpenDefaultRM(session); };
    services.close = [](visa::ViObject object) { return visa::viClose(object); };
    services.statusDesc = [](ViStatus status) {
        char description[visa::kStatusDescLength] = {};
        visa::viStatusDesc(visa::VI_NULL, status, description);
        return std::string(description);
    };
    services.visaLibrary = [] { return visa::activeVisaLocation(); };
    return services;
}

AutoConfigServices& installedServices() {
    static AutoConfigServices services = productionServices();
    return services;
}

// The module's view of the search's IoParms record.
struct ModuleRecord {
    braxcfg_autocf_record record{};
    rsrc::IoParms* parms = nullptr;
    std::string intfName;
    std::string intfTypeStr;
    std::string visaLibrary;
};

rsrc::IoParms& parmsOf(const braxcfg_autocf_record* record) {
    return *static_cast<ModuleRecord*>(record->host)->parms;
}

extern "C" int32_t moduleSetDevice(braxcfg_autocf_record* record, const char* deviceName) {
    return parseInto(parmsOf(record), deviceName != nullptr ? deviceName : "");
}

extern "C" void moduleSetNoMoreDevices(braxcfg_autocf_record* record) { parseInto(parmsOf(record), kNoDeviceName); }

extern "C" uint32_t moduleReadProductSetting(const braxcfg_autocf_record*, const char* name, char* buffer,
                                             uint32_t size) {
    const std::string value =
        name == nullptr ? std::string()
                        : platform::Registry(platform::kLocalMachine, platform::productKey(), platform::kRegOpenExisting)
                              .getString(name);
    if (buffer != nullptr && size > 0) std::snprintf(buffer, size, "%s", value.c_str());
    return static_cast<uint32_t>(value.size());
}

void fillModuleRecord(ModuleRecord& view, rsrc::IoParms& parms, const std::string& visaLibrary) {
    view.parms = &parms;
    view.intfName = parms.getIntfName();
    view.intfTypeStr = parms.getIntfTypeStr() != nullptr ? parms.getIntfTypeStr() : "";
    view.visaLibrary = visaLibrary;
    braxcfg_autocf_record& record = view.record;
    record.version = BRAXCFG_AUTOCF_VERSION;
    record.size = sizeof(braxcfg_autocf_record);
    record.intfName = view.intfName.c_str();
    record.intfTypeStr = view.intfTypeStr.c_str();
    record.intfType = parms.getIntfType();
    record.boardNumber = parms.getBoardNumber();
    record.visaLibrary = view.visaLibrary.c_str();
    record.setDevice = moduleSetDevice;
    record.setNoMoreDevices = moduleSetNoMoreDevices;
    record.readProductSetting = moduleReadProductSetting;
    record.host = &view;
}

// Devices added earlier in this search count as known: the list is read
// afresh for every device reported.
bool isKnown(const AutoConfigDevices& devices, const std::string& name) {
    const std::vector<std::string> known = devices.knownDevices();
    return std::find(known.begin(), known.end(), name) != known.end();
}

// Asks the module for devices until it has none left or reports an error.
void searchDevices(const AutoConfigServices& services, braxcfg_autocf_record& record, rsrc::IoParms& parms,
                   AutoConfigDevices& devices, const AutoConfigReport& report, AutoConfigResult& result) {
    for (;;) {
        // A module that answers success without handing a device back ends
        // the search instead of repeating the previous device for ever.
        parms.clear();
        ViStatus status = visa::VI_SUCCESS;
        if (auto next = reinterpret_cast<braxcfg_autocf_next_dev_fn>(services.loadEntryPoint(kNextDevEntry)))
            status = next(&record);
        else
            parseInto(parms, kNoDeviceName);
        if (status == visa::VI_ERROR_RSRC_NFOUND) {
            report.showMessage(kAutoAddErrorMessage);
            return;
        }
        if (status != visa::VI_SUCCESS) {
            report.showMessage(visaErrorMessage(status, services.statusDesc(status)));
            return;
        }
        if (parms.getLastError() < 0) return;
        const std::string found = parms.getRsrcString() != nullptr ? parms.getRsrcString() : "";
        if (isKnown(devices, found)) continue;
        result.newDevices.insert(result.newDevices.begin(), found);
        devices.addNewDevice(found);
        if (report.newDeviceFound) report.newDeviceFound(found);
    }
}

}  // namespace

std::string visaErrorMessage(ViStatus status, const std::string& description) {
    char hex[16];
    // The status as the 32-bit number it is, whatever the width of long.
    std::snprintf(hex, sizeof hex, "0x%lx", static_cast<unsigned long>(static_cast<std::uint32_t>(status)));
    return "VISA Error (" + std::string(hex) + ") occurred. " + description;
}

StoreDevices::StoreDevices(const store::ConfigStore& store, std::string intf)
    : store_(store), intf_(std::move(intf)) {}

std::vector<std::string> StoreDevices::knownDevices() const { return store_.GetDeviceNames(intf_); }

void StoreDevices::addNewDevice(const std::string& name) { store_.AddDeviceEntry(intf_, name, "", ""); }

const AutoConfigServices& autoConfigServices() { return installedServices(); }

AutoConfigServices setAutoConfigServices(AutoConfigServices services) {
    AutoConfigServices previous = std::move(installedServices());
    installedServices() = services.loadEntryPoint ? std::move(services) : productionServices();
    return previous;
}

AutoConfigResult runAutoConfigSearch(const std::string& intf, const std::string& visaName,
                                     AutoConfigDevices& devices, const AutoConfigReport& report) {
    const AutoConfigServices& services = autoConfigServices();
    AutoConfigResult result;
    rsrc::IoParms parms;
    // A GPIB-VXI interface is reached through the VISA run time, which must
    // stay open for the whole search.
    const bool gpibVxi = store::ConfigStore().GetIntfType(intf) == visa::VI_INTF_GPIB_VXI;
    visa::ViSession session = visa::VI_NULL;
    if (gpibVxi) services.openDefaultRM(&session);

    result.knownDevices = devices.knownDevices();

    parseInto(parms, visaName);
    ModuleRecord view;
    fillModuleRecord(view, parms, services.visaLibrary());
    ViStatus status = visa::VI_SUCCESS;
    if (auto reset = reinterpret_cast<braxcfg_autocf_reset_fn>(services.loadEntryPoint(kResetEntry)))
        status = reset(&view.record, 0);
    if (status != visa::VI_SUCCESS)
        report.showMessage(visaErrorMessage(status, services.statusDesc(status)));
    else
        searchDevices(services, view.record, parms, devices, report, result);

    if (auto done = reinterpret_cast<braxcfg_autocf_done_fn>(services.loadEntryPoint(kDoneEntry))) done();
    if (gpibVxi) services.close(session);
    return result;
}

DoneAutoConfigLists doneAutoConfigLists(const AutoConfigResult& result) {
    DoneAutoConfigLists lists{result.knownDevices, result.newDevices, true};
    if (lists.found.empty()) {
        lists.found.push_back(kNoNewDevicesFound);
        lists.foundEnabled = false;
    }
    return lists;
}

}  // namespace braxcfg::dialogs
