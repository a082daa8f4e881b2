#pragma once
// The host's own work on the store's interface keys: reading them for an
// overview, adding a new INTF<n> key and removing one. The plug-in only
// ever works on keys the host has created; these are what a configuration
// tool does around it. Every change is one transaction.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace braxcfg::tool {

struct InterfaceRow {
    std::string key;
    std::string visaName;
    std::string typeWord;
    bool setUp = false;
    bool hasAutoConfig = false;
    int autoConfig = 0;
    std::vector<std::string> devices;  // device names, in store order
};

// Every INTF<n> key that exists, by number.
std::vector<InterfaceRow> readInterfaces();

// "INTF" followed by a decimal number, the prefix in any case (store names
// ignore case).
bool isInterfaceKeyName(const std::string& name);

// Whether a command may work on `intf`: nothing when the key exists;
// otherwise the message is on stderr and the result is the exit code (2 for
// a name that is no interface key name, 1 for a key that does not exist).
std::optional<int> refuseInterfaceKey(const std::string& intf);

// Whether device entries can be written to `intf`: its "VISADev" key is
// there once the interface is set up, and the store writes no entry without
// it. Nothing when it is; otherwise the message is on stderr and the result
// is the exit code 2.
std::optional<int> refuseWithoutDeviceList(const std::string& intf);

struct NewInterface {
    std::string type;          // a "VISAIntfType" word, in any case
    std::optional<int> board;  // none: the lowest board number not yet used for the type
    bool socket = false;       // "VISARsrcType" SOCKET (TCPIP only) instead of INSTR
};

struct AddedInterface {
    std::string key;       // "INTF<n>", empty when refused
    std::string visaName;  // "GPIB0"
    std::string error;     // why nothing was written
};

// Creates the lowest free INTF<n> with "VISAName", "VISAIntfType" and
// "VISARsrcType". Refuses an unknown type, a board out of range, SOCKET on
// another type than TCPIP, and a VISA name another interface already has
// (names compared ignoring case, as resource names are); writes nothing then.
AddedInterface addInterface(const NewInterface& request);

// Deletes the interface key with everything below it. Empty on success,
// else why nothing was removed.
std::string removeInterface(const std::string& intf);

// The type words `interfaces add` accepts, in the order a person picks them.
std::vector<std::string> addableTypeWords();

}  // namespace braxcfg::tool
