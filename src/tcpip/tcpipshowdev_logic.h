#pragma once
// What the LAN resource list decides, without any window. Each list entry
// is "alias<TAB>resource string"; the alias list (AList) holds the alias
// changes that OK commits.
#include <optional>
#include <string>
#include <vector>

#include "tcpip/alist.h"

namespace braxcfg::tcpip {

struct EntryParts {
    std::string alias;
    std::string resource;
};

// Alias before the first TAB and resource string after it; without a TAB
// the whole text is the resource string.
EntryParts splitEntry(const std::string& entry);
std::string makeEntry(const std::string& alias, const std::string& resource);

struct ShowDevButtonStates {
    bool okEnabled = false;
    bool cancelEnabled = false;
    bool addEnabled = false;
    bool editEnabled = false;
    bool testEnabled = false;
    bool removeEnabled = false;
};

// While a child dialog or a test runs every command button is off; a list
// that may not be changed offers only OK and Cancel; otherwise Edit, Test
// and Remove follow whether an entry is selected.
ShowDevButtonStates showDevButtonStates(bool busy, bool editable, bool anySelected);

// A click in the list enables Remove for any selection, Edit for exactly
// one entry and Test always, whether or not the list may be changed.
struct SelectionButtonStates {
    bool editEnabled = false;
    bool testEnabled = false;
    bool removeEnabled = false;
};
SelectionButtonStates selectionButtonStates(int selectedCount);

// Names `entry` "TcpipDevice<n>" with the first n from 1 to 999 that no live
// entry of `aliases` has (case ignored). False when all are taken; the entry
// then keeps the last name tried.
bool findAutomaticAlias(AList& aliases, AliasEntry& entry);

// The entry whose whole text equals `bareResource`, if any. Entries hold a
// TAB and end with a class, so this matches only an entry that is a bare
// resource string itself: the list has always checked exactly this much.
std::optional<std::string> duplicateDevice(const std::vector<std::string>& entries, const std::string& bareResource);

std::string duplicateDeviceMessage(const std::string& entry);
std::string duplicateAliasMessage(const std::string& alias);

// The KORL address of a LAN resource: "<intf>[<host>]:<device>" for an
// instrument, "<intf>,<port>[<host>]" for a socket; at most 255 characters.
// Absent when the interface has no KORL interface name.
std::optional<std::string> formatKorlAddress(const std::string& korlIntfName, const std::string& rsrcClass,
                                             const std::string& host, const std::string& device);
// The same for a full resource string, parsed to learn its interface's KORL
// name, class, host and device.
std::optional<std::string> korlAddressOf(const std::string& resource);

// The fields an entry's resource string fills the edit dialog with.
struct ResourceParts {
    std::string prefix;  // "TCPIP0::"
    std::string host;
    std::string device;
};
// Cuts "PREFIX::host::device::CLASS" by position, the way Edit always has:
// the class goes after the last ':', the prefix ends two characters after
// the first ':', the host ends at the next ':'. Absent when the string is
// too short for a part or a ':' is missing.
std::optional<ResourceParts> takeApartResource(const std::string& resource);

// One device entry OK writes.
struct DeviceWrite {
    std::string device;     // the resource string without "::" and class
    std::string rsrcClass;  // the text after the last ':'
    std::string alias;
};
std::vector<DeviceWrite> planDeviceWrites(const std::vector<std::string>& entries);

// Records an edit's alias in `aliases`: `remembered` is the alias entry of
// the resource as it was (null when it had none). A new alias for a resource
// without one is added (when no live entry has the name); an emptied alias is
// marked deleted; a changed one is renamed and pointed at `resource`. Returns
// an entry created here that the list did not take, for the caller to free.
AliasEntry* recordEditedAlias(AList& aliases, AliasEntry* remembered, const std::string& newAlias,
                              const std::string& resource);

}  // namespace braxcfg::tcpip
