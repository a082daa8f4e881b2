#include "store/interface_setup.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "platform/product_settings.h"
#include "platform/profile_reader.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "visacore/config/reg_visa_config.h"
#include "visacore/visa_types.h"

namespace braxcfg::store {
namespace {

#ifdef _WIN32
constexpr char kPathSeparator = '\\';
#else
constexpr char kPathSeparator = '/';
#endif

// The profile value is read into a buffer of this many characters.
constexpr std::size_t kProfileValueChars = 1200;

char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The smallest n >= from whose key "INTF<n>" exists: the numbers between
// have no key, so visiting them would do nothing.
std::optional<long long> nextInterfaceNumber(long long from) {
    const auto numbers = visa::existingIntfNumbers();
    const auto next = std::lower_bound(numbers->begin(), numbers->end(), from);
    if (next == numbers->end()) return std::nullopt;
    return *next;
}

}  // namespace

std::string interfaceProfilePath() {
    return platform::baseDir() + kPathSeparator + "intfcfg" + kPathSeparator + "intfcfg.ini";
}

int serialAutoConfigDefault() {
    std::string text =
        platform::readProfileString(interfaceProfilePath(), "Cfg232", "VISAAutoConfig", "", kProfileValueChars);
    if (text.empty()) return 0;
    // Only the first character is lowered: "True" counts, "TRUE" and "YES" do not.
    text[0] = asciiLower(text[0]);
    return text == "true" || text == "yes" || text == "1" ? 1 : 0;
}

platform::StoreFailure configureAtRunTime(const ConfigStore& store, const std::string& intf) {
    return store.SetupIntfEntries(intf, 1);
}

platform::StoreFailure setupVisaIntf(const ConfigStore& store, const std::string& intf) {
    if (const auto failure = store.WriteVisaInfoDefaults(); failure != platform::StoreFailure::None) return failure;
    // One already set up keeps its choice. Validity is not asked: a key with
    // a known type but no VISA name is set up as its type says (its interface
    // resources then start with "::"); SetupIntfEntries itself refuses a
    // second set-up of such a key, since the validity test hides it here.
    if (store.IsVisaIntfSetup(intf)) return platform::StoreFailure::None;
    const int serialDefault = serialAutoConfigDefault();
    switch (store.GetIntfType(intf)) {
        case visa::VI_INTF_GPIB:
        case visa::VI_INTF_VXI:
        case visa::VI_INTF_GPIB_VXI:
        case visa::VI_INTF_PXI:
        case visa::VI_INTF_USB:
        case visa::VI_INTF_RSIB:
            return configureAtRunTime(store, intf);
        case visa::VI_INTF_ASRL:
            return store.SetupIntfEntries(intf, serialDefault);
        case visa::VI_INTF_TCPIP:
            // LAN resources are entered by hand and kept in the store.
            return store.SetupIntfEntries(intf, 0);
        default:
            return platform::StoreFailure::None;
    }
}

platform::StoreFailure doVisaEndStuff(const ConfigStore& store) {
    if (const auto failure = store.WriteVisaInfoDefaults(); failure != platform::StoreFailure::None) return failure;
    // The highest number is read again every round, so that interfaces added
    // meanwhile are visited too. INTF0 is always visited, as a pass from 0
    // up to the highest number would. A change that could not be written
    // ends the pass: the next would wait for the same lock.
    for (long long next = 0;;) {
        const int max = store.GetMaxIntfNum();
        const auto number = nextInterfaceNumber(next);
        if (!number || *number > max) return platform::StoreFailure::None;
        const std::string intf = "INTF" + std::to_string(*number);
        if (store.IsValidVisaIntf(intf)) {
            auto failure = store.RenameIntfEntries(intf);
            if (failure == platform::StoreFailure::None) failure = store.SetupIntfEntries(intf, 0);
            if (failure != platform::StoreFailure::None) return failure;
        }
        next = *number + 1;
    }
}

}  // namespace braxcfg::store
