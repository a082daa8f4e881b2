// devices INTF [add NAME [--class C] | clear]: the device entries of one
// interface, through the store operations the dialogs use.
#include <cstdio>
#include <iostream>

#include "command.h"
#include "interface_keys.h"
#include "platform/cp1252.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "tool_json.h"
#include "tool_text.h"

namespace braxcfg::tool {
namespace {

std::string hexBytes(const std::string& bytes) {
    std::string out;
    for (unsigned char byte : bytes) {
        char hex[4];
        std::snprintf(hex, sizeof hex, out.empty() ? "%02x" : " %02x", byte);
        out += hex;
    }
    return out;
}

std::string valueText(platform::RegType type, const std::string& bytes) {
    if (type == platform::kRegSz) return "\"" + forStdout(bytes.c_str()) + "\"";
    if (type == platform::kRegDword && bytes.size() == 4) {
        char number[16];
        std::snprintf(number, sizeof number, "0x%08x",
                      static_cast<unsigned>(static_cast<unsigned char>(bytes[0]) |
                                            static_cast<unsigned char>(bytes[1]) << 8 |
                                            static_cast<unsigned char>(bytes[2]) << 16 |
                                            static_cast<unsigned>(static_cast<unsigned char>(bytes[3])) << 24));
        return number;
    }
    if (type == platform::kRegBinary) return "hex:" + hexBytes(bytes);
    return "type " + std::to_string(type) + " hex:" + hexBytes(bytes);
}

// Calls `take` with the name, type and bytes of each value of the key.
template <typename Take>
void eachValue(const std::string& keyPath, Take take) {
    const platform::Registry key(keyPath, platform::kRegOpenExisting);
    std::string name;
    platform::RegType type = platform::kRegNone;
    for (std::uint32_t i = 0;; ++i) {
        key.enumValue(i, name, type);
        if (name.empty()) break;
        std::string bytes;
        key.getRaw(name, type, bytes);
        take(name, type, bytes);
    }
}

void printValues(const std::string& keyPath) {
    eachValue(keyPath, [](const std::string& name, platform::RegType type, const std::string& bytes) {
        std::cout << "    " << forStdout(name) << " = " << valueText(type, bytes) << "\n";
    });
}

// A string value as its text, any other as the text listing shows it.
Json valuesJson(const std::string& keyPath) {
    Json values = Json::object();
    eachValue(keyPath, [&values](const std::string& name, platform::RegType type, const std::string& bytes) {
        values[platform::cp1252ToUtf8(name)] =
            type == platform::kRegSz ? jsonText(bytes.c_str()) : Json(valueText(type, bytes));
    });
    return values;
}

int printDevicesJson(const store::ConfigStore& store, const std::string& intf) {
    const platform::StoreTransaction snapshot;
    Json devices = Json::array();
    std::string device;
    for (std::uint32_t index = 0; !(device = store.GetDeviceName(intf, index)).empty(); ++index) {
        Json resources = Json::array();
        std::string resource;
        for (std::uint32_t r = 0; !(resource = store.GetDeviceRsrcName(intf, device, r)).empty(); ++r)
            resources.push_back({{"name", jsonText(resource)},
                                 {"values", valuesJson(intf + "\\VISADev\\" + device + "\\" + resource)}});
        devices.push_back({{"name", jsonText(device)}, {"resources", std::move(resources)}});
    }
    printJson({{"interface", jsonText(intf)}, {"visaName", jsonText(store.GetVisaName(intf))}, {"devices", devices}});
    return 0;
}

int listDevices(const store::ConfigStore& store, const std::string& intf) {
    // One transaction: the listing is one picture of the store, and its
    // thousands of small reads share one lock round instead of one each.
    const platform::StoreTransaction snapshot;
    std::uint32_t index = 0;
    for (std::string device; !(device = store.GetDeviceName(intf, index)).empty(); ++index) {
        std::cout << forStdout(device) << "\n";
        std::uint32_t resourceIndex = 0;
        for (std::string resource; !(resource = store.GetDeviceRsrcName(intf, device, resourceIndex)).empty();
             ++resourceIndex) {
            std::cout << "  " << forStdout(resource) << "\n";
            printValues(intf + "\\VISADev\\" + device + "\\" + resource);
        }
    }
    if (index == 0)
        std::cout << "No device entries on " << forStdout(intf) << " (" << forStdout(store.GetVisaName(intf)) << ").\n";
    return 0;
}

int runDevices(const ParsedArgs& split) {
    const auto& words = split.operands;
    if (words.empty()) return fail("devices needs an interface key name, such as INTF0");
    // Listing leaves no trace in the store; an action changes it.
    if (const int rc = prepareStore(words.size() > 1 ? StoreUse::Write : StoreUse::ReadOnly); rc != 0) return rc;
    const std::string& intf = words[0];
    if (const auto refused = refuseInterfaceKey(intf)) return *refused;
    const store::ConfigStore store;
    if (!store.IsValidVisaIntf(intf)) return fail(forStderr(intf) + " is not a valid VISA interface (no \"VISAName\")");
    const bool hasDeviceList = platform::Registry(intf + "\\VISADev", platform::kRegOpenExisting).isOpen();
    const std::string action = words.size() > 1 ? words[1] : "";
    const std::string classFilter = optionValue(split, "--class");
    if (action != "add" && !classFilter.empty()) return fail("--class belongs to 'devices INTF add NAME'");
    if (action.empty() && hasOption(split, "--json"))
        return words.size() == 1 ? printDevicesJson(store, intf) : fail("unexpected operands");
    if (hasOption(split, "--json")) return fail("--json belongs to the listing");
    if (action.empty()) return words.size() == 1 ? listDevices(store, intf) : fail("unexpected operands");
    if (action == "add") {
        if (words.size() != 3 || words[2].empty()) return fail("usage: braxcfg devices INTF add NAME [--class C]");
        if (!hasDeviceList)
            return fail(forStderr(intf) + " has no device list yet; set it up first: braxcfg setup " + forStderr(intf));
        if (const auto failure = store.AddDeviceEntry(intf, words[2], classFilter, "");
            failure != platform::StoreFailure::None)
            return fail(platform::storeFailureMessage(failure));
        if (store.GetDeviceRsrcName(intf, words[2], 0).empty())
            std::cerr << "braxcfg: note: no resource class of the VISAInfo\\DefaultRsrcs table applies to "
                      << forStderr(words[2]) << (classFilter.empty() ? "" : " with --class " + forStderr(classFilter))
                      << "\n";
        return 0;
    }
    if (action == "clear") {
        if (words.size() != 2) return fail("usage: braxcfg devices INTF clear");
        const auto failure = store.ClearDevices(intf);
        return failure == platform::StoreFailure::None ? 0 : fail(platform::storeFailureMessage(failure));
    }
    return fail("unknown devices action '" + forStderr(action) + "' (add or clear)");
}

const CommandRegistration kDevices(
    {"devices", "list, add or clear an interface's device entries",
     "usage: braxcfg devices INTF [--json]\n"
     "       braxcfg devices INTF add NAME [--class C]\n"
     "       braxcfg devices INTF clear\n"
     "Without an action, lists the device entries below INTF\\VISADev with their\n"
     "resource entries and values. 'add' creates the device entry NAME (such as\n"
     "GPIB0::22) with one resource entry per class of VISAInfo\\DefaultRsrcs that\n"
     "applies to the interface's type, or only class C. 'clear' removes every\n"
     "device entry of the interface.\n",
     StoreUse::None, runDevices,
     {{"--json", nullptr, "list as JSON"}, {"--class", "C", "only the resource class C (add)"}}});

}  // namespace
}  // namespace braxcfg::tool
