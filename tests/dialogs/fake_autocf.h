#pragma once
// An auto-configuration module inside the test program, installed as the
// search's services: it reports what a test scripts and counts every call,
// entry-point look-ups and the VISA session included.
#include <braxcfg/autocf.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "dialogs/done_auto_config_logic.h"

namespace braxcfg::test {

struct FakeAutocf {
    struct Report {
        std::string device;  // handed back with setDevice; "" says "no more devices"
        visa::ViStatus status = visa::VI_SUCCESS;
        bool fillsRecord = true;  // false: answers without touching the record
    };
    visa::ViStatus resetStatus = visa::VI_SUCCESS;
    std::vector<Report> reports;       // after the last one: "no more devices"
    std::set<std::string> absent;      // entry points the module lacks
    bool moduleMissing = false;

    // What happened.
    std::map<std::string, int> lookups;
    int resets = 0, nextCalls = 0, dones = 0;
    std::string resetIntfName;
    std::vector<visa::ViSession> opened, closed;

    // Installs this module while it lives.
    FakeAutocf();
    ~FakeAutocf();
    FakeAutocf(const FakeAutocf&) = delete;
    FakeAutocf& operator=(const FakeAutocf&) = delete;

private:
    std::size_t nextReport_ = 0;
    dialogs::AutoConfigServices previous_;
    friend struct FakeAutocfCalls;
};

// "description of 0x..." as the fake's status texts read.
std::string fakeStatusDescription(visa::ViStatus status);

}  // namespace braxcfg::test
