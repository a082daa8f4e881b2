#pragma once
// An auto-configuration module inside the test program, installed as the
// search's services while it lives: it reports what a test scripts and
// counts every call, entry-point look-ups and the VISA session included.
#include <braxcfg/autocf.h>

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "dialogs/done_auto_config_logic.h"
#include "store/config_store.h"

namespace braxcfg::test {

class FakeAutocf {
public:
    struct Report {
        std::string device;  // handed back with setDevice; "" says "no more devices"
        visa::ViStatus status = visa::VI_SUCCESS;
        bool fillsRecord = true;  // false: answers without touching the record
    };
    visa::ViStatus resetStatus = visa::VI_SUCCESS;
    std::vector<Report> reports;   // after the last one: "no more devices"
    std::set<std::string> absent;  // entry points the module lacks

    // What happened.
    std::map<std::string, int> lookups;
    int nextCalls = 0, dones = 0;
    std::vector<visa::ViSession> opened, closed;

    FakeAutocf() : previous_(dialogs::setAutoConfigServices(services())) { installed() = this; }
    ~FakeAutocf() {
        dialogs::setAutoConfigServices(std::move(previous_));
        installed() = nullptr;
    }
    FakeAutocf(const FakeAutocf&) = delete;
    FakeAutocf& operator=(const FakeAutocf&) = delete;

    // "description of 0x..." as the fake's status texts read.
    static std::string statusDescription(visa::ViStatus status) {
        char text[48];
        std::snprintf(text, sizeof text, "description of %08X", static_cast<unsigned>(status));
        return text;
    }

private:
    static FakeAutocf*& installed() {
        static FakeAutocf* fake = nullptr;
        return fake;
    }
    static int32_t reset(braxcfg_autocf_record*, int32_t) { return installed()->resetStatus; }
    static int32_t next(braxcfg_autocf_record* record) {
        FakeAutocf& fake = *installed();
        ++fake.nextCalls;
        const Report report = fake.nextReport_ < fake.reports.size() ? fake.reports[fake.nextReport_++] : Report{};
        if (report.status != visa::VI_SUCCESS || !report.fillsRecord) return report.status;
        if (report.device.empty())
            record->setNoMoreDevices(record);
        else
            record->setDevice(record, report.device.c_str());
        return visa::VI_SUCCESS;
    }
    static void done() { ++installed()->dones; }

    dialogs::AutoConfigServices services() {
        dialogs::AutoConfigServices services;
        services.loadEntryPoint = [this](const char* name) -> void* {
            ++lookups[name];
            const std::map<std::string, void*> entries = {{"AUTOCF_autoConfigReset", reinterpret_cast<void*>(&reset)},
                                                          {"AUTOCF_autoConfigNextDev", reinterpret_cast<void*>(&next)},
                                                          {"AUTOCF_autoConfigDone", reinterpret_cast<void*>(&done)}};
            return absent.count(name) || !entries.count(name) ? nullptr : entries.at(name);
        };
        services.openDefaultRM = [this](visa::ViSession* session) {
            opened.push_back(*session = 0x5150 + static_cast<visa::ViSession>(opened.size()));
            return visa::VI_SUCCESS;
        };
        services.close = [this](visa::ViObject object) {
            closed.push_back(object);
            return visa::VI_SUCCESS;
        };
        services.statusDesc = statusDescription;
        services.visaLibrary = [] { return std::string(); };
        return services;
    }

    std::size_t nextReport_ = 0;
    dialogs::AutoConfigServices previous_;
};

// Runs the search on INTF0 (GPIB0) in store mode, collecting its messages.
inline dialogs::AutoConfigResult searchIntf0(std::vector<std::string>& messages) {
    const store::ConfigStore config;
    dialogs::StoreDevices devices(config, "INTF0");
    return dialogs::runAutoConfigSearch("INTF0", "GPIB0", devices,
                                        {[&](const std::string& text) { messages.push_back(text); }, nullptr});
}

}  // namespace braxcfg::test
