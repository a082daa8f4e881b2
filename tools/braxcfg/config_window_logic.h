#pragma once
// What the configuration window decides without a window: the cells of an
// interface's row, which actions its selection allows, the question before
// a removal and the status line.
#include <string>
#include <vector>

#include "interface_keys.h"

namespace braxcfg::tool {

// Columns of the interface table, left to right.
inline constexpr const char* kInterfaceColumns[] = {"Interface", "VISA name", "Type", "Set up",
                                                    "Identify at run time", "Devices"};

std::vector<std::string> interfaceCells(const InterfaceRow& row);

// GPIB, VXI and GPIB-VXI: devices at addresses on a bus that can be
// searched, the interfaces the configuration choice is for.
bool isAddressBased(const std::string& typeWord);

// The actions that change the store; exporting and reading again are
// always there.
struct WindowActions {
    bool setUp = false;      // the plug-in's silent set-up, for a key not set up yet
    bool edit = false;       // the plug-in's device list
    bool configure = false;  // the configuration choice
    bool add = false;
    bool remove = false;
    bool import = false;
};

// `selected` null: no interface is selected. `editable` is the plug-in's
// isVisaIntfEditable answer for it; `writable` whether this user may change
// the store at all.
WindowActions windowActions(const InterfaceRow* selected, bool editable, bool writable);

// Only TCPIP interfaces have SOCKET resources.
bool socketAllowed(const std::string& typeWord);

std::string removeQuestion(const InterfaceRow& row);

// Whether a person can see a window: a display to connect to, and no Qt
// platform that draws nowhere. The arguments are the values of
// QT_QPA_PLATFORM, DISPLAY and WAYLAND_DISPLAY (null when unset).
bool canShowWindows(const char* qpaPlatform, const char* display, const char* waylandDisplay);

// Which store is open, and whether this user may change it.
std::string storeStatusLine(const std::string& path, bool writable);

}  // namespace braxcfg::tool
