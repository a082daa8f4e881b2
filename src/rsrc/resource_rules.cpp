#include "rsrc/resource_rules.h"

#include <cstring>
#include <initializer_list>

namespace braxcfg::rsrc {
namespace {

using namespace visa;

struct InterfaceTypeWord {
    const char* word;
    ViUInt16 type;
};

constexpr InterfaceTypeWord kInterfaceTypes[] = {
    {"GPIB", VI_INTF_GPIB}, {"VXI", VI_INTF_VXI},     {"GPIB-VXI", VI_INTF_GPIB_VXI}, {"ASRL", VI_INTF_ASRL},
    {"PXI", VI_INTF_PXI},   {"TCPIP", VI_INTF_TCPIP}, {"USB", VI_INTF_USB},           {"RSIB", VI_INTF_RSIB},
};

// In the order the class words are looked up.
constexpr const char* kResourceClasses[] = {"INSTR", "MEMACC", "INTFC", "BACKPLANE", "SOCKET", "SERVANT"};

// Allowed parameter counts as a bit set: bit p set means p parameters.
constexpr unsigned counts(std::initializer_list<int> allowed) {
    unsigned bits = 0;
    for (int p : allowed) bits |= 1u << p;
    return bits;
}

struct ClassRule {
    const char* rsrcClass;
    ViUInt16 type;
    unsigned allowedCounts;
};

constexpr ClassRule kClassRules[] = {
    {"INSTR", VI_INTF_GPIB, counts({1, 2})},    {"INSTR", VI_INTF_VXI, counts({1})},
    {"INSTR", VI_INTF_GPIB_VXI, counts({1})},   {"INSTR", VI_INTF_ASRL, counts({0})},
    {"INSTR", VI_INTF_PXI, counts({1, 2, 3})},  {"INSTR", VI_INTF_TCPIP, counts({1, 2})},
    {"INSTR", VI_INTF_USB, counts({3, 4})},     {"INSTR", VI_INTF_RSIB, counts({1, 2})},
    {"MEMACC", VI_INTF_VXI, counts({0})},       {"MEMACC", VI_INTF_GPIB_VXI, counts({0})},
    {"MEMACC", VI_INTF_PXI, counts({0})},       {"INTFC", VI_INTF_GPIB, counts({0})},
    {"INTFC", VI_INTF_TCPIP, counts({0, 2})},   {"INTFC", VI_INTF_RSIB, counts({0, 2})},
    {"BACKPLANE", VI_INTF_VXI, counts({0, 1})}, {"BACKPLANE", VI_INTF_GPIB_VXI, counts({0, 1})},
    {"BACKPLANE", VI_INTF_PXI, counts({1})},    {"SOCKET", VI_INTF_TCPIP, counts({2})},
    {"SERVANT", VI_INTF_GPIB, counts({0})},     {"SERVANT", VI_INTF_VXI, counts({0})},
    {"SERVANT", VI_INTF_TCPIP, counts({0, 1})},
};

}  // namespace

ViUInt16 interfaceTypeOf(const char* typeWord) {
    if (typeWord == nullptr) return 0;
    for (const auto& entry : kInterfaceTypes)
        if (std::strcmp(typeWord, entry.word) == 0) return entry.type;
    return 0;
}

bool isResourceClass(const char* word) {
    for (const char* rsrcClass : kResourceClasses)
        if (std::strcmp(word, rsrcClass) == 0) return true;
    return false;
}

bool isAllowedParamCount(const char* rsrcClass, ViUInt16 intfType, int paramCount) {
    if (paramCount < 0 || paramCount > 8) return false;
    for (const auto& rule : kClassRules)
        if (rule.type == intfType && std::strcmp(rule.rsrcClass, rsrcClass) == 0)
            return (rule.allowedCounts >> paramCount) & 1u;
    return false;
}

}  // namespace braxcfg::rsrc
