#include "rsrc/resource_rules.h"

#include <cstring>
#include <initializer_list>

namespace braxcfg::rsrc {
namespace {

using namespace visa;

struct ResourceClassWord {
    const char* word;
    RsrcClass rsrcClass;
};

// In the order the class words are looked up.
constexpr ResourceClassWord kResourceClasses[] = {
    {"INSTR", RsrcClass::Instr},         {"MEMACC", RsrcClass::Memacc}, {"INTFC", RsrcClass::Intfc},
    {"BACKPLANE", RsrcClass::Backplane}, {"SOCKET", RsrcClass::Socket}, {"SERVANT", RsrcClass::Servant},
};

// Allowed parameter counts as a bit set: bit p set means p parameters.
constexpr unsigned counts(std::initializer_list<int> allowed) {
    unsigned bits = 0;
    for (int p : allowed) bits |= 1u << p;
    return bits;
}

struct ClassRule {
    RsrcClass rsrcClass;
    ViUInt16 type;
    unsigned allowedCounts;
};

constexpr ClassRule kClassRules[] = {
    {RsrcClass::Instr, VI_INTF_GPIB, counts({1, 2})},    {RsrcClass::Instr, VI_INTF_VXI, counts({1})},
    {RsrcClass::Instr, VI_INTF_GPIB_VXI, counts({1})},   {RsrcClass::Instr, VI_INTF_ASRL, counts({0})},
    {RsrcClass::Instr, VI_INTF_PXI, counts({1, 2, 3})},  {RsrcClass::Instr, VI_INTF_TCPIP, counts({1, 2})},
    {RsrcClass::Instr, VI_INTF_USB, counts({3, 4})},     {RsrcClass::Instr, VI_INTF_RSIB, counts({1, 2})},
    {RsrcClass::Memacc, VI_INTF_VXI, counts({0})},       {RsrcClass::Memacc, VI_INTF_GPIB_VXI, counts({0})},
    {RsrcClass::Memacc, VI_INTF_PXI, counts({0})},       {RsrcClass::Intfc, VI_INTF_GPIB, counts({0})},
    {RsrcClass::Intfc, VI_INTF_TCPIP, counts({0, 2})},   {RsrcClass::Intfc, VI_INTF_RSIB, counts({0, 2})},
    {RsrcClass::Backplane, VI_INTF_VXI, counts({0, 1})}, {RsrcClass::Backplane, VI_INTF_GPIB_VXI, counts({0, 1})},
    {RsrcClass::Backplane, VI_INTF_PXI, counts({1})},    {RsrcClass::Socket, VI_INTF_TCPIP, counts({2})},
    {RsrcClass::Servant, VI_INTF_GPIB, counts({0})},     {RsrcClass::Servant, VI_INTF_VXI, counts({0})},
    {RsrcClass::Servant, VI_INTF_TCPIP, counts({0, 1})},
};

}  // namespace

RsrcClass resourceClassOf(const char* word) {
    if (word == nullptr) return RsrcClass::None;
    for (const auto& entry : kResourceClasses)
        if (word[0] == entry.word[0] && std::strcmp(word, entry.word) == 0) return entry.rsrcClass;
    return RsrcClass::None;
}

bool isAllowedParamCount(RsrcClass rsrcClass, ViUInt16 intfType, int paramCount) {
    if (paramCount < 0 || paramCount > 8) return false;
    for (const auto& rule : kClassRules)
        if (rule.type == intfType && rule.rsrcClass == rsrcClass) return (rule.allowedCounts >> paramCount) & 1u;
    return false;
}

}  // namespace braxcfg::rsrc
