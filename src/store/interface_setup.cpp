#include "store/interface_setup.h"

#include <cstdint>
#include <optional>

#include "platform/product_settings.h"
#include "platform/profile_reader.h"
#include "platform/registry.h"
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
char asciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// The number n when `name` opens as "INTF<n>" (names ignore case, <n> is
// written without leading zeros and fits an int); nothing otherwise.
std::optional<long long> interfaceNumberOf(const std::string& name) {
    static constexpr char kPrefix[] = "INTF";
    if (name.size() <= 4 || name.size() > 14) return std::nullopt;
    for (std::size_t i = 0; i < 4; ++i)
        if (asciiUpper(name[i]) != kPrefix[i]) return std::nullopt;
    if (name[4] == '0' && name.size() > 5) return std::nullopt;
    long long number = 0;
    for (std::size_t i = 4; i < name.size(); ++i) {
        if (name[i] < '0' || name[i] > '9') return std::nullopt;
        number = number * 10 + (name[i] - '0');
    }
    if (number > INT32_MAX) return std::nullopt;
    return number;
}

// The smallest n >= from whose key "INTF<n>" exists: the numbers between
// have no key, so visiting them would do nothing.
std::optional<long long> nextInterfaceNumber(long long from) {
    const platform::Registry root("", platform::kRegOpenExisting);
    std::optional<long long> best;
    for (std::uint32_t index = 0;; ++index) {
        const std::string name = root.enumKey(index);
        if (name.empty()) break;
        const auto number = interfaceNumberOf(name);
        if (number && *number >= from && (!best || *number < *best)) best = number;
    }
    return best;
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

void configureAtRunTime(const ConfigStore& store, const std::string& intf) { store.SetupIntfEntries(intf, 1); }

void setupVisaIntf(const ConfigStore& store, const std::string& intf) {
    store.WriteVisaInfoDefaults();
    // One already set up keeps its choice. Validity is not asked: a key with
    // a known type but no VISA name is set up as its type says (its interface
    // resources then start with "::"); SetupIntfEntries itself refuses a
    // second set-up of such a key, since the validity test hides it here.
    if (store.IsVisaIntfSetup(intf)) return;
    const int serialDefault = serialAutoConfigDefault();
    switch (store.GetIntfType(intf)) {
        case visa::VI_INTF_GPIB:
        case visa::VI_INTF_VXI:
        case visa::VI_INTF_GPIB_VXI:
        case visa::VI_INTF_PXI:
        case visa::VI_INTF_USB:
        case visa::VI_INTF_RSIB:
            configureAtRunTime(store, intf);
            break;
        case visa::VI_INTF_ASRL:
            store.SetupIntfEntries(intf, serialDefault);
            break;
        case visa::VI_INTF_TCPIP:
            // LAN resources are entered by hand and kept in the store.
            store.SetupIntfEntries(intf, 0);
            break;
        default:
            break;
    }
}

void doVisaEndStuff(const ConfigStore& store) {
    store.WriteVisaInfoDefaults();
    // The highest number is read again every round, so that interfaces added
    // meanwhile are visited too.
    for (long long next = 0;;) {
        const int max = store.GetMaxIntfNum();
        const auto number = nextInterfaceNumber(next);
        if (!number || *number > max) return;
        const std::string intf = "INTF" + std::to_string(*number);
        if (store.IsValidVisaIntf(intf)) {
            store.RenameIntfEntries(intf);
            store.SetupIntfEntries(intf, 0);
        }
        next = *number + 1;
    }
}

}  // namespace braxcfg::store
