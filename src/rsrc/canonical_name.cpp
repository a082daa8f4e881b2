// The canonical and alternate names of a parsed resource string.
#include <cstring>

#include "rsrc/c_text.h"
#include "rsrc/io_parms.h"
#include "rsrc/name_format.h"
#include "rsrc/resource_rules.h"

namespace braxcfg::rsrc {
namespace {

using namespace visa;

constexpr std::size_t kPxiPartChars = 255;

// Numbers print as signed, so an unchecked "no number" shows as -1.
int asSigned(std::uint32_t value) { return static_cast<int>(value); }

// What both PXI INSTR writings start from. In the old writing the first
// parameter is a plain number: the bus is in the interface element, the
// device is that parameter, the function an optional second one.
struct PxiNumbers {
    int paramCount;
    bool oldWriting;
    int bus;
    int device;
    int function;
    const char* typeWord;
    const char* rsrcClass;
};

PxiNumbers pxiNumbers(const IoParms& parms) {
    const int p = parms.getParamCount();
    const std::uint32_t device = parms.getNumParam(1);
    const char* rsrcClass = parms.getRsrcClassStr();
    return {p,
            device != IoParms::kNotANumber,
            asSigned(parms.getNumParam(0)),
            asSigned(device),
            p == 2 ? asSigned(parms.getNumParam(2)) : 0,
            parms.getIntfTypeStr() != nullptr ? parms.getIntfTypeStr() : "",
            rsrcClass != nullptr ? rsrcClass : ""};
}

}  // namespace

const char* IoParms::classText() const {
    const char* rsrcClass = getRsrcClassStr();
    return rsrcClass != nullptr ? rsrcClass : "";
}

char* IoParms::copyOut(const OwnedText& name, char* buf, int size) {
    if (buf == nullptr || size < 1) return name.text.get();
    buf[0] = '\0';
    if (name.text) ctext::copyBounded(buf, name.text.get(), static_cast<std::size_t>(size) - 1);
    return buf;
}

char* IoParms::getCanonicalName(char* buf, int size) {
    if (!canonicalName_.text) buildCanonicalName();
    return copyOut(canonicalName_, buf, size);
}

char* IoParms::getAltName(char* buf, int size) {
    if (!altName_.text) buildAltName();
    return copyOut(altName_, buf, size);
}

void IoParms::buildCanonicalName() {
    if (!canonicalName_.allocate(kNameBufferSize)) return;
    canonicalName_.text[0] = '\0';
    writeCanonicalName(canonicalName_.text.get(), canonicalName_.size);
}

void IoParms::writeCanonicalName(char* target, std::uint32_t size) {
    const char* rsrcClass = classText();
    const char* intf = intfName_;
    const int p = getParamCount();
    const std::uint32_t n1 = getNumParam(1);
    const std::uint32_t n2 = getNumParam(2);
    const bool n1Valid = n1 != kNotANumber;
    const bool n2Valid = n2 != kNotANumber;
    const RsrcClass kind = resourceClassOf(rsrcClass);
    const bool instr = kind == RsrcClass::Instr;
    switch (getIntfType()) {
        case VI_INTF_GPIB:
            if (instr && p == 1 && n1Valid)
                return formatName(target, size, "%s::%d::%s", intf, asSigned(n1), rsrcClass);
            if (instr && p == 2 && n1Valid && n2Valid)
                return formatName(target, size, "%s::%d::%d::%s", intf, asSigned(n1), asSigned(n2), rsrcClass);
            if ((kind == RsrcClass::Intfc || kind == RsrcClass::Servant) && p == 0)
                return formatName(target, size, "%s::%s", intf, rsrcClass);
            return;
        case VI_INTF_VXI:
        case VI_INTF_GPIB_VXI:
            if (instr && p == 1 && n1Valid)
                return formatName(target, size, "%s::%d::%s", intf, asSigned(n1), rsrcClass);
            if (kind == RsrcClass::Backplane && p == 0) return formatName(target, size, "%s::%s", intf, rsrcClass);
            if (kind == RsrcClass::Backplane && p == 1 && n1Valid)
                return formatName(target, size, "%s::%d::%s", intf, asSigned(n1), rsrcClass);
            if ((kind == RsrcClass::Memacc || (kind == RsrcClass::Servant && getIntfType() == VI_INTF_VXI)) && p == 0)
                return formatName(target, size, "%s::%s", intf, rsrcClass);
            return;
        case VI_INTF_ASRL:
            if (instr && p == 0) return formatName(target, size, "%s::%s", intf, rsrcClass);
            return;
        case VI_INTF_PXI:
            if (instr) return useLegacyPxi() ? buildPxiLegacyName(target, size) : buildPxiBdfName(target, size);
            if (kind == RsrcClass::Memacc && p == 0) return formatName(target, size, "%s::%s", intf, rsrcClass);
            if (kind == RsrcClass::Backplane && p == 1)
                return formatName(target, size, "%s::%d::%s", intf, asSigned(n1), rsrcClass);
            return;
        case VI_INTF_TCPIP:
            if (instr && (p == 1 || p == 2))
                return formatName(target, size, "%s::%s::%s::%s", intf, getParam(1), p == 1 ? "inst0" : getParam(2),
                                  rsrcClass);
            if (kind == RsrcClass::Servant && (p == 0 || p == 1))
                return formatName(target, size, "%s::%s::%s", intf, p == 0 ? "inst0" : getParam(1), rsrcClass);
            if (kind == RsrcClass::Socket && p == 2 && n2Valid)
                return formatName(target, size, "%s::%s::%d::%s", intf, getParam(1), asSigned(n2), rsrcClass);
            if (kind == RsrcClass::Intfc && p == 2)
                return formatName(target, size, "%s::%s::%s::%s", intf, getParam(1), getParam(2), rsrcClass);
            if (kind == RsrcClass::Intfc && p == 0) return formatName(target, size, "%s::%s", intf, rsrcClass);
            return;
        case VI_INTF_USB:
            return writeUsbName(target, size, UsbIds::Hexadecimal);
        case VI_INTF_RSIB:
            if (instr && p == 1) return formatName(target, size, "%s::%s::%s", intf, getParam(1), rsrcClass);
            if (instr && p == 2)
                return formatName(target, size, "%s::%s::%d::%s", intf, getParam(1), asSigned(n2), rsrcClass);
            return;
        default:
            return;
    }
}

// USB INSTR in either writing of the identifiers; without an interface
// number the instrument is on interface 0.
void IoParms::writeUsbName(char* target, std::uint32_t size, UsbIds ids) {
    const int p = getParamCount();
    if (resourceClassOf(classText()) != RsrcClass::Instr || (p != 3 && p != 4)) return;
    const std::uint32_t vendor = getNumParam(1);
    const std::uint32_t product = getNumParam(2);
    const std::uint32_t intfNumber = p == 4 ? getNumParam(4) : 0;
    if (vendor == kNotANumber || product == kNotANumber || intfNumber == kNotANumber) return;
    if (ids == UsbIds::Hexadecimal)
        formatName(target, size, "%s::0x%04X::0x%04X::%s::%u::%s", intfName_, vendor, product, getParam(3), intfNumber,
                   classText());
    else
        formatName(target, size, "%s::%d::%d::%s::%u::%s", intfName_, asSigned(vendor), asSigned(product), getParam(3),
                   intfNumber, classText());
}

void IoParms::buildAltName() {
    if (!altName_.allocate(kNameBufferSize)) return;
    altName_.text[0] = '\0';
    char* target = altName_.text.get();
    switch (getIntfType()) {
        case VI_INTF_PXI:
            // Always the PXI writing that the canonical name does not use.
            return useLegacyPxi() ? buildPxiBdfName(target, altName_.size) : buildPxiLegacyName(target, altName_.size);
        case VI_INTF_USB:
            return writeUsbName(target, altName_.size, UsbIds::Decimal);
        default:
            return;
    }
}

// The chassis-and-slot writing has one form only; it always goes into the
// canonical name, bounded by the size the caller passed, whichever buffer
// was being built (the alternate name then stays empty).
bool IoParms::writePxiChassisName(std::uint32_t size) {
    const int p = getParamCount();
    if (p != 2 && p != 3) return false;
    char chassis[kPxiPartChars + 1];
    char slot[kPxiPartChars + 1];
    char function[kPxiPartChars + 1];
    ctext::copyBounded(chassis, getParam(1), kPxiPartChars);
    ctext::copyBounded(slot, getParam(2), kPxiPartChars);
    ctext::copyBounded(function, p == 3 ? getParam(3) : "FUNC0", kPxiPartChars);
    upperCaseN(chassis, kPxiPartChars + 1);
    upperCaseN(slot, kPxiPartChars + 1);
    upperCaseN(function, kPxiPartChars + 1);
    if (canonicalName_.text)
        formatName(canonicalName_.text.get(), size, "%s::%s::%s::%s::%s", intfName_, chassis, slot, function,
                   classText());
    return true;
}

void IoParms::buildPxiBdfName(char* target, std::uint32_t size) {
    const PxiNumbers pxi = pxiNumbers(*this);
    if (pxi.oldWriting) {
        if (pxi.paramCount == 1 || pxi.paramCount == 2)
            formatName(target, size, "%s%d::%d-%d.%d::%s", pxi.typeWord, 0, pxi.bus, pxi.device, pxi.function,
                       pxi.rsrcClass);
        return;
    }
    if (pxi.paramCount == 1) {
        char busDevice[kPxiPartChars + 3];
        ctext::copyBounded(busDevice, getParam(1), kPxiPartChars);
        if (std::strchr(busDevice, '.') == nullptr) std::strcat(busDevice, ".0");
        formatName(target, size, "%s::%s::%s", intfName_, busDevice, pxi.rsrcClass);
        return;
    }
    writePxiChassisName(size);
}

void IoParms::buildPxiLegacyName(char* target, std::uint32_t size) {
    const PxiNumbers pxi = pxiNumbers(*this);
    if (pxi.oldWriting) {
        if (pxi.paramCount == 1 || pxi.paramCount == 2)
            formatName(target, size, "%s%d::%d::%d::%s", pxi.typeWord, pxi.bus, pxi.device, pxi.function,
                       pxi.rsrcClass);
        return;
    }
    if (pxi.paramCount == 1) {
        int bus = 0;
        int device = 0;
        int function = 0;
        if (ctext::scanBusDeviceFunction(getParam(1), bus, device, function) >= 2)
            formatName(target, size, "%s%d::%d::%d::%s", pxi.typeWord, bus, device, function, pxi.rsrcClass);
        return;
    }
    writePxiChassisName(size);
}

}  // namespace braxcfg::rsrc
