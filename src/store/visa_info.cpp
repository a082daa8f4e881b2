// The "VISAInfo" block: who made this VISA configuration, the template
// tables that interface and device resources are created from, and the run
// time's limits.
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>

#include "braxcfg_version.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/list_rewrite.h"
#include "store/visa_info.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;

static_assert(BRAXCFG_MANUFACTURER_ID >= 0 && BRAXCFG_MANUFACTURER_ID <= 0xFFF,
              "the manufacturer identification is a 12-bit VXI code");
static_assert(BRAXCFG_VERSION_MAJOR <= 0xFFF && BRAXCFG_VERSION_MINOR <= 0xFFF && BRAXCFG_VERSION_PATCH <= 0xFF,
              "the version must fit the VISA version encoding");

std::atomic<bool> visaInfoWritten{false};

// One resource class of a template table, with the interface types it
// applies to, in the order the type flags are written.
struct ResourceClass {
    const char* name;
    const char* drvrName;
    const char* prefixName;
    bool gpib, vxi, gpibVxi, asrl, tcpip, usb, rsib, pxi;
};

// Every class is served by the INSTR driver, whatever its prefix.
constexpr ResourceClass kDeviceClasses[] = {
    {"INSTR", "INSTR", "INSTR", true, true, true, true, true, true, true, true},
    {"SOCKET", "INSTR", "SOCKET", false, false, false, false, true, false, false, false},
};

constexpr ResourceClass kInterfaceClasses[] = {
    {"INTFC", "INSTR", "INTFC", true, false, false, false, false, false, false, false},
    {"MEMACC", "INSTR", "MEMACC", false, true, true, false, false, false, false, true},
    {"BACKPLANE", "INSTR", "BACKPLANE", false, true, true, false, false, false, false, false},
};

struct NumberDefault {
    const char* name;
    std::uint32_t value;
};

// Limits the user may have tuned: written only where missing.
constexpr NumberDefault kRunTimeLimits[] = {
    {"MaxSessNbr", 256},   {"MaxNbrOfProcs", 64},  {"DefaultQSize", 50},
    {"SleepMs", 0},        {"DefaultLockWait", 0}, {"DefaultAllowLocalSpaceFifo", 0},
};

template <std::size_t N>
void writeTable(const Registry& visaInfo, const char* tableName, const char* comment,
                const ResourceClass (&classes)[N]) {
    const Registry table(visaInfo.handle(), tableName, kRegOpenOrCreate);
    table.setString("", comment);
    for (const ResourceClass& c : classes) {
        const Registry key(table.handle(), c.name, kRegOpenOrCreate);
        key.setString("DrvrName", c.drvrName);
        key.setString("PrefixName", c.prefixName);
        key.setBool("GPIB", c.gpib);
        key.setBool("VXI", c.vxi);
        key.setBool("GPIB-VXI", c.gpibVxi);
        key.setBool("ASRL", c.asrl);
        key.setBool("TCPIP", c.tcpip);
        key.setBool("USB", c.usb);
        key.setBool("RSIB", c.rsib);
        key.setBool("PXI", c.pxi);
    }
}

void writeIdentification(const Registry& visaInfo) {
    visaInfo.setString("", "Comment: General Information on Tolvane's VISA Implementation");
    visaInfo.setDword("Spec Version", visaVersionNumber(4, 0, 0));
    visaInfo.setString("Manufacturer", "Tolvane Technologies");
    visaInfo.setString("Copyright", copyrightLine());
    visaInfo.setString("ManfVersion", BRAXCFG_VERSION_TEXT);
    visaInfo.setString("LastMod", ctimeText(std::time(nullptr)));
    visaInfo.setString("ModTool", "Tolvane VISA Configuration Tool");
    visaInfo.setDword("ManfVersionNbr",
                      visaVersionNumber(BRAXCFG_VERSION_MAJOR, BRAXCFG_VERSION_MINOR, BRAXCFG_VERSION_PATCH));
    visaInfo.setDword("ManfID", BRAXCFG_MANUFACTURER_ID);
}

// Tables of earlier releases that the run time must no longer find.
void removeOldDriverTable(const Registry& visaInfo) {
    const Registry drivers(visaInfo.handle(), "DefaultRsrcsDrvrs", kRegOpenExisting);
    if (!drivers.isOpen()) return;
    drivers.deleteTree("INSTR");
    visaInfo.deleteTree("DefaultRsrcsDrvrs");
}

void removeTriggerClasses(const Registry& visaInfo) {
    const Registry interfaceTable(visaInfo.handle(), "DefaultIntfRsrcs", kRegOpenExisting);
    for (int i = 0; i <= 7; ++i) interfaceTable.deleteTree("TTLTRIG" + std::to_string(i));
}

void writeMissingLimits(const Registry& visaInfo) {
    if (!visaInfo.valueExists("Logging")) visaInfo.setString("Logging", "OFF");
    for (const NumberDefault& limit : kRunTimeLimits)
        if (!visaInfo.valueExists(limit.name)) visaInfo.setDword(limit.name, limit.value);
}

bool toLocalTime(std::time_t when, std::tm& out) {
#ifdef _WIN32
    return localtime_s(&out, &when) == 0;
#else
    return localtime_r(&when, &out) != nullptr;
#endif
}

}  // namespace

std::uint32_t visaVersionNumber(std::uint32_t major, std::uint32_t minor, std::uint32_t subMinor) {
    return (major & 0xFFF) << 20 | (minor & 0xFFF) << 8 | (subMinor & 0xFF);
}

std::string copyrightLine() {
    // The store holds narrow cp1252 text: 0xA9 is the copyright sign there.
    return std::string("Copyright \xA9 Tolvane Technologies ") + BRAXCFG_COPYRIGHT_YEARS;
}

std::string ctimeText(std::time_t when) {
    static const char* const kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm local{};
    if (!toLocalTime(when, local)) return {};
    char text[80];
    std::snprintf(text, sizeof text, "%s %s %02d %02d:%02d:%02d %d", kDays[local.tm_wday % 7],
                  kMonths[local.tm_mon % 12], local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                  local.tm_year + 1900);
    return text;
}

platform::StoreFailure ConfigStore::WriteVisaInfoDefaults() const {
    // Set before the first write: a failure part-way is not retried by the
    // same process (the caller still learns of it).
    if (visaInfoWritten.exchange(true)) return platform::StoreFailure::None;
    return rewriteList([] {
    const Registry visaInfo("VISAInfo", kRegOpenOrCreate);
    writeIdentification(visaInfo);
    writeTable(visaInfo, "DefaultRsrcs", "Resources to load during auto-connect and configuration ADD functions",
               kDeviceClasses);
    removeOldDriverTable(visaInfo);
    writeTable(visaInfo, "DefaultIntfRsrcs", "Interface Resources to load during configuration ADD functions",
               kInterfaceClasses);
    removeTriggerClasses(visaInfo);
    writeMissingLimits(visaInfo);
    });
}

void resetVisaInfoWrittenFlag() { visaInfoWritten = false; }

}  // namespace braxcfg::store
