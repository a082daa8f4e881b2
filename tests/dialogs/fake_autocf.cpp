#include "fake_autocf.h"

#include <cstdio>

namespace braxcfg::test {

namespace {
FakeAutocf* installed = nullptr;
}  // namespace

struct FakeAutocfCalls {
    static int32_t reset(braxcfg_autocf_record* record, int32_t) {
        ++installed->resets;
        installed->resetIntfName = record->intfName;
        return installed->resetStatus;
    }
    static int32_t next(braxcfg_autocf_record* record) {
        FakeAutocf& fake = *installed;
        ++fake.nextCalls;
        if (fake.nextReport_ >= fake.reports.size()) {
            record->setNoMoreDevices(record);
            return visa::VI_SUCCESS;
        }
        const FakeAutocf::Report& report = fake.reports[fake.nextReport_++];
        if (report.status != visa::VI_SUCCESS || !report.fillsRecord) return report.status;
        if (report.device.empty())
            record->setNoMoreDevices(record);
        else
            record->setDevice(record, report.device.c_str());
        return visa::VI_SUCCESS;
    }
    static void done() { ++installed->dones; }
};

std::string fakeStatusDescription(visa::ViStatus status) {
    char text[48];
    std::snprintf(text, sizeof text, "description of %08X", static_cast<unsigned>(status));
    return text;
}

FakeAutocf::FakeAutocf() {
    installed = this;
    dialogs::AutoConfigServices services;
    services.loadEntryPoint = [this](const char* name) -> void* {
        ++lookups[name];
        if (moduleMissing || absent.count(name)) return nullptr;
        const std::string entry = name;
        if (entry == "AUTOCF_autoConfigReset") return reinterpret_cast<void*>(&FakeAutocfCalls::reset);
        if (entry == "AUTOCF_autoConfigNextDev") return reinterpret_cast<void*>(&FakeAutocfCalls::next);
        if (entry == "AUTOCF_autoConfigDone") return reinterpret_cast<void*>(&FakeAutocfCalls::done);
        return nullptr;
    };
    services.openDefaultRM = [this](visa::ViSession* session) {
        *session = 0x5150 + static_cast<visa::ViSession>(opened.size());
        opened.push_back(*session);
        return visa::VI_SUCCESS;
    };
    services.close = [this](visa::ViObject object) {
        closed.push_back(object);
        return visa::VI_SUCCESS;
    };
    services.statusDesc = fakeStatusDescription;
    services.visaLibrary = [] { return std::string(); };
    previous_ = dialogs::setAutoConfigServices(std::move(services));
}

FakeAutocf::~FakeAutocf() {
    dialogs::setAutoConfigServices(std::move(previous_));
    installed = nullptr;
}

}  // namespace braxcfg::test
