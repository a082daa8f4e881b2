// Bringing the entry names of an interface in line with its current VISA
// name at the end of a configuration pass: when an interface's board
// number changes (GPIB1 becomes GPIB0), its "VISADev" and "VISAIntfRsrc"
// entries still carry the old prefix and the run time would not find them.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/debug_output.h"
#include "platform/registry.h"
#include "platform/store_key.h"
#include "store/config_store.h"
#include "store/list_rewrite.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;

// Subkey names of this length or more end an enumeration early (the
// wrapper's name buffer), so later names are not seen.
constexpr std::size_t kEnumNameLimit = 80;

char asciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::size_t prefixEnd(const std::string& entry) {
    const std::size_t colon = entry.find(':');
    return colon == std::string::npos ? entry.size() : colon;
}

// In line: the part before the first ":" is the VISA name, case ignored.
bool isInLine(const std::string& entry, const std::string& visaName) {
    const std::size_t end = prefixEnd(entry);
    if (end != visaName.size()) return false;
    for (std::size_t i = 0; i < end; ++i)
        if (asciiUpper(entry[i]) != asciiUpper(visaName[i])) return false;
    return true;
}

std::string inLineName(const std::string& entry, const std::string& visaName) {
    return visaName + entry.substr(prefixEnd(entry));
}

// Every value of `key` with its type, the default value and long names
// included, read through a second handle on it.
std::vector<platform::StoreKey::ValueName> valuesOf(const Registry& key) {
    if (!key.isOpen()) return {};
    return platform::StoreKey::opened(key.handle(), "", platform::kKeyQueryValue).valueNames();
}

// True when `key` has keys more than `levels` levels below it. Read level by
// level, without recursion, so any depth is safe to look at.
bool deeperThan(const Registry& key, std::size_t levels) {
    std::vector<std::unique_ptr<Registry>> level;
    std::vector<const Registry*> parents{&key};
    for (std::size_t depth = 0; !parents.empty(); ++depth) {
        std::vector<std::unique_ptr<Registry>> next;
        for (const Registry* parent : parents)
            for (const std::string& child : parent->subkeyNames())
                next.push_back(std::make_unique<Registry>(parent->handle(), child, kRegOpenExisting));
        if (!next.empty() && depth + 1 > levels) return true;
        level = std::move(next);
        parents.clear();
        for (const auto& child : level) parents.push_back(child.get());
    }
    return false;
}

// A renamed entry keeps its strings, flags and numbers; values of other
// types are not the run time's and are left behind.
void copyValuesByType(const Registry& from, const Registry& to) {
    for (const auto& [name, type] : valuesOf(from)) {
        if (type == platform::kRegSz) {
            to.setString(name, from.getString(name));
        } else if (type == platform::kRegBinary) {
            to.setBool(name, from.getBool(name) != 0);
        } else if (type == platform::kRegDword) {
            std::uint32_t number = 0;
            from.getDword(name, &number);
            to.setDword(name, number);
        }
    }
}

// Copies `from` with everything below it into `to`, byte for byte.
void copyTreeUnchanged(const Registry& from, const Registry& to) {
    if (to.isOpen()) {
        const auto target = platform::StoreKey::opened(to.handle(), "", platform::kKeyAllAccess);
        for (const auto& value : valuesOf(from)) {
            platform::RegType type = platform::kRegNone;
            std::string bytes;
            if (from.getRaw(value.name, type, bytes)) target.setBytes(value.name, type, bytes);
        }
    }
    for (const std::string& child : from.subkeyNames())
        copyTreeUnchanged(Registry(from.handle(), child, kRegOpenExisting),
                          Registry(to.handle(), child, kRegOpenOrCreate));
}

// Renames the entries of one list, and of the entries below a renamed one.
//
// The result is that of the plain procedure: a pass renames the first stale
// entry an enumeration from index 0 finds, again and again until none is
// found or one cannot be deleted; passes are repeated over the list's
// indexes, from index 0 again after a pass that renamed something. Stale
// entries are thus taken in the store's order, and a rename onto an existing
// entry writes over its values.
//
// Renaming never reorders the names still to be visited, so one enumeration
// serves a whole pass; only a new name that an enumeration would see
// differently (itself stale, or so long that it ends the enumeration) makes
// the list be read again. A pass that renamed nothing and stopped where the
// one before it stopped changes nothing, nor would any pass after it.
class ListRepair {
public:
    explicit ListRepair(std::string visaName) : visaName_(std::move(visaName)) {}

    void repairList(const Registry& list) const {
        std::optional<std::string> lastStop;
        for (std::size_t index = 0; index < list.subkeyNames().size();) {
            const PassResult pass = repair(list, list, true);
            if (pass.renamed) {
                index = 0;
                lastStop.reset();
                continue;
            }
            if (!pass.stoppedAt || pass.stoppedAt == lastStop) return;
            lastStop = pass.stoppedAt;
            ++index;
        }
    }

private:
    struct PassResult {
        bool renamed = false;
        std::optional<std::string> stoppedAt;  // the entry that could not be deleted
    };

    // One pass renaming the stale subkeys of `source` into `destination`
    // (the same key for a list itself). An entry that cannot be deleted ends
    // it, so that such an entry cannot make it go round for ever.
    PassResult repair(const Registry& source, const Registry& destination, bool inPlace) const {
        std::vector<std::string> names = source.subkeyNames();
        PassResult result;
        for (std::size_t next = 0; next < names.size();) {
            const std::string entry = names[next++];
            if (isInLine(entry, visaName_)) continue;
            const std::string newName = inLineName(entry, visaName_);
            // The copy walks the entry's tree by recursion; a tree deeper than
            // the registry allows (only a foreign tool makes one) is left as
            // it is, like an entry that cannot be deleted.
            if (inPlace && deeperThan(Registry(source.handle(), entry, kRegOpenExisting), platform::kMaxKeyDepth)) {
                platform::debugOutput("Entry " + entry + " is nested too deep to be renamed\n");
                result.stoppedAt = entry;
                return result;
            }
            {
                const Registry from(source.handle(), entry, kRegOpenExisting);
                const Registry to(destination.handle(), newName, kRegOpenOrCreate);
                copyValuesByType(from, to);
                repair(from, to, false);
            }
            if (source.deleteTree(entry) != platform::kErrorSuccess) {
                result.stoppedAt = entry;
                return result;
            }
            result.renamed = true;
            if (inPlace && (newName.size() >= kEnumNameLimit || !isInLine(newName, visaName_))) {
                names = source.subkeyNames();
                next = 0;
            }
        }
        if (!inPlace) keepInLineEntries(source, destination, names);
        return result;
    }

    // Entries below a renamed one that are already in line are not renamed,
    // but they would go with the old entry: they move over as they are.
    // They go last, over a stale sibling renamed onto the same name, so
    // that trying a stopped repair again changes nothing.
    void keepInLineEntries(const Registry& source, const Registry& destination,
                           const std::vector<std::string>& names) const {
        for (const std::string& entry : names) {
            if (!isInLine(entry, visaName_)) continue;
            copyTreeUnchanged(Registry(source.handle(), entry, kRegOpenExisting),
                              Registry(destination.handle(), entry, kRegOpenOrCreate));
        }
    }

    std::string visaName_;
};

}  // namespace

platform::StoreFailure ConfigStore::RenameIntfEntries(const std::string& intf) const {
    return rewriteList([&] {
        if (!IsValidVisaIntf(intf)) return;
        const ListRepair repair(GetVisaName(intf));
        for (const char* list : {"\\VISADev", "\\VISAIntfRsrc"}) {
            const Registry key(intf + list, kRegOpenExisting);
            repair.repairList(key);
        }
    });
}

}  // namespace braxcfg::store
