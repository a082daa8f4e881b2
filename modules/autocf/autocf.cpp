// The auto-configuration module the plug-in ships. It answers, in this
// order:
//   1. the instruments of a simulated lab when one is configured
//      (BRAXCFG_LAB=FILE, else the product setting "LabFile");
//   2. otherwise the resources the system VISA library finds on the
//      interface ("GPIB0::?*INSTR");
//   3. otherwise no device.
// The devices of one search are gathered at reset and handed back one per
// call, in the order their source gave them.
#include <braxcfg/autocf.h>
#include <dlfcn.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "lab_file.h"

namespace {

// "Unable to start operation because setup is invalid": the configured lab
// file cannot be read.
constexpr int32_t kErrorInvalidSetup = static_cast<int32_t>(0xBFFF003Au);
constexpr uint32_t kNameLength = 256;

struct Search {
    std::vector<std::string> devices;
    std::size_t next = 0;
};

Search& search() {
    static Search current;
    return current;
}

std::string configuredLab(const braxcfg_autocf_record* record) {
    if (const char* env = std::getenv("BRAXCFG_LAB"); env != nullptr && *env != '\0') return env;
    char path[4096] = {};
    if (record->readProductSetting != nullptr) record->readProductSetting(record, "LabFile", path, sizeof path);
    return path;
}

int32_t labDevices(const std::string& path, const std::string& intfName, std::vector<std::string>& devices) {
    const braxcfg::lab::LabFile lab = braxcfg::lab::readLabFile(path);
    if (!lab.error.empty()) return kErrorInvalidSetup;
    for (const auto& instrument : lab.instruments)
        if (braxcfg::lab::isOnInterface(instrument.resource, intfName))
            devices.push_back(braxcfg::lab::deviceNameOf(instrument.resource));
    return BRAXCFG_AUTOCF_SUCCESS;
}

// The few calls of a system VISA library a search needs.
using OpenDefaultRM = int32_t (*)(uint32_t*);
using FindRsrc = int32_t (*)(uint32_t, const char*, uint32_t*, uint32_t*, char*);
using FindNext = int32_t (*)(uint32_t, char*);
using Close = int32_t (*)(uint32_t);

int32_t visaDevices(const std::string& library, const std::string& intfName, std::vector<std::string>& devices) {
    // The plug-in has loaded this library already; this only takes another
    // reference to it.
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) return BRAXCFG_AUTOCF_SUCCESS;
    auto openRM = reinterpret_cast<OpenDefaultRM>(dlsym(handle, "viOpenDefaultRM"));
    auto find = reinterpret_cast<FindRsrc>(dlsym(handle, "viFindRsrc"));
    auto findNext = reinterpret_cast<FindNext>(dlsym(handle, "viFindNext"));
    auto close = reinterpret_cast<Close>(dlsym(handle, "viClose"));
    int32_t status = BRAXCFG_AUTOCF_SUCCESS;
    uint32_t rm = 0;
    if (openRM != nullptr && find != nullptr && findNext != nullptr && close != nullptr && openRM(&rm) >= 0) {
        uint32_t list = 0;
        uint32_t count = 0;
        char name[kNameLength] = {};
        const std::string pattern = intfName + "::?*INSTR";
        status = find(rm, pattern.c_str(), &list, &count, name);
        if (status >= 0) {
            for (uint32_t i = 0; i < count; ++i) {
                if (i > 0 && findNext(list, name) < 0) break;
                devices.push_back(braxcfg::lab::deviceNameOf(name));
            }
            close(list);
            status = BRAXCFG_AUTOCF_SUCCESS;
        } else if (status == BRAXCFG_AUTOCF_ERROR_RSRC_NFOUND) {
            status = BRAXCFG_AUTOCF_SUCCESS;  // nothing on this interface
        }
        close(rm);
    }
    dlclose(handle);
    return status;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int32_t AUTOCF_autoConfigReset(braxcfg_autocf_record* record, int32_t) {
    if (const int32_t status = braxcfg_autocf_check(record); status != BRAXCFG_AUTOCF_SUCCESS) return status;
    Search& current = search();
    current = {};
    const std::string intfName = record->intfName != nullptr ? record->intfName : "";
    if (const std::string lab = configuredLab(record); !lab.empty()) return labDevices(lab, intfName, current.devices);
    if (record->visaLibrary != nullptr && *record->visaLibrary != '\0')
        return visaDevices(record->visaLibrary, intfName, current.devices);
    return BRAXCFG_AUTOCF_SUCCESS;
}

__attribute__((visibility("default"))) int32_t AUTOCF_autoConfigNextDev(braxcfg_autocf_record* record) {
    if (const int32_t status = braxcfg_autocf_check(record); status != BRAXCFG_AUTOCF_SUCCESS) return status;
    Search& current = search();
    if (current.next >= current.devices.size()) {
        record->setNoMoreDevices(record);
        return BRAXCFG_AUTOCF_SUCCESS;
    }
    record->setDevice(record, current.devices[current.next++].c_str());
    return BRAXCFG_AUTOCF_SUCCESS;
}

__attribute__((visibility("default"))) void AUTOCF_autoConfigDone(void) { search() = {}; }

}  // extern "C"
