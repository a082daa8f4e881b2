#pragma once
// What the add/edit dialog of one LAN resource decides, without any window:
// the resource string it composes from the fields as typed, which controls
// may be used, and its caption.
#include <string>

namespace braxcfg::tcpip {

// The result of composing a resource string from the dialog's fields.
struct ComposedResource {
    std::string resource;      // prefix + host + "::" + device + "::" + class; empty without a host
    std::string bareResource;  // the same without "::" and the class
    std::string rsrcClass;     // "INSTR" or "SOCKET"
};

// Composes from copies of `host` and `device` with the space character
// stripped at both ends. No host: both strings empty and the class stays
// `previousClass`. No device: "inst0", the usual name of a LAN instrument,
// as an INSTR resource. A device that starts with a digit is a port, and
// the resource a SOCKET.
ComposedResource composeResource(const std::string& prefix, const std::string& host, const std::string& device,
                                 const std::string& previousClass);

struct NewDevControlStates {
    bool okEnabled = false;
    bool testEnabled = false;
    bool deviceEnabled = false;
    bool cancelEnabled = false;
};

// OK, Test and the device field need a host name as typed that is not empty
// and holds no "::" (single colons are allowed); while a test runs all four
// controls are off.
NewDevControlStates newDevControlStates(const std::string& host, bool testing);

// "Edit a TCPIP resource" for a dialog opened on an existing host, "Add a
// TCPIP resource" otherwise.
std::string newDevCaption(const std::string& host);

}  // namespace braxcfg::tcpip
