#include "config_window_logic.h"

namespace braxcfg::tool {

std::vector<std::string> interfaceCells(const InterfaceRow& row) {
    const std::string autoConfig = !row.setUp ? "" : !row.hasAutoConfig ? "?" : row.autoConfig ? "yes" : "no";
    return {row.key, row.visaName, row.typeWord, row.setUp ? "yes" : "no", autoConfig,
            std::to_string(row.devices.size())};
}

bool isAddressBased(const std::string& typeWord) {
    return typeWord == "GPIB" || typeWord == "VXI" || typeWord == "GPIB-VXI";
}

WindowActions windowActions(const InterfaceRow* selected, bool editable, bool writable) {
    if (!writable) return {};
    if (selected == nullptr) return {false, false, false, true, false, true};
    return {!selected->setUp, editable, !selected->visaName.empty() && isAddressBased(selected->typeWord), true, true,
            true};
}

bool socketAllowed(const std::string& typeWord) { return typeWord == "TCPIP"; }

std::string removeQuestion(const InterfaceRow& row) {
    std::string question = "Remove the interface " + row.key;
    if (!row.visaName.empty()) question += " (" + row.visaName + ")";
    const std::size_t devices = row.devices.size();
    if (devices > 0) question += " and its " + std::to_string(devices) + (devices == 1 ? " device" : " devices");
    return question + " from the store?";
}

bool canShowWindows(const char* qpaPlatform, const char* display, const char* waylandDisplay) {
    const auto set = [](const char* value) { return value != nullptr && *value != '\0'; };
    const std::string platform = set(qpaPlatform) ? qpaPlatform : "";
    if (platform.starts_with("offscreen") || platform.starts_with("minimal")) return false;
    return set(display) || set(waylandDisplay);
}

std::string storeStatusLine(const std::string& path, bool writable) {
    return "Store: " + path + (writable ? "" : " (read-only: changes are refused)");
}

}  // namespace braxcfg::tool
