// The canonical and alternate names of a parsed resource string.
#include <cstdarg>
#include <cstring>

#include "rsrc/c_text.h"
#include "rsrc/io_parms.h"

namespace braxcfg::rsrc {
namespace {

using namespace visa;

constexpr std::size_t kPxiPartChars = 255;

__attribute__((format(printf, 3, 4))) void printInto(char* target, std::uint32_t size, const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vsnprintf(target, size, format, args);
    va_end(args);
}

bool is(const char* rsrcClass, const char* word) { return std::strcmp(rsrcClass, word) == 0; }

// Numbers print as signed, so an unchecked "no number" shows as -1.
int asSigned(std::uint32_t value) { return static_cast<int>(value); }

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
    const bool instr = is(rsrcClass, "INSTR");
    switch (getIntfType()) {
        case VI_INTF_GPIB:
            if (instr && p == 1 && n1Valid) return printInto(target, size, "%s::%d::%s", intf, asSigned(n1), rsrcClass);
            if (instr && p == 2 && n1Valid && n2Valid)
                return printInto(target, size, "%s::%d::%d::%s", intf, asSigned(n1), asSigned(n2), rsrcClass);
            if ((is(rsrcClass, "INTFC") || is(rsrcClass, "SERVANT")) && p == 0)
                return printInto(target, size, "%s::%s", intf, rsrcClass);
            return;
        case VI_INTF_VXI:
        case VI_INTF_GPIB_VXI:
            if (instr && p == 1 && n1Valid) return printInto(target, size, "%s::%d::%s", intf, asSigned(n1), rsrcClass);
            if (is(rsrcClass, "BACKPLANE") && p == 0) return printInto(target, size, "%s::%s", intf, rsrcClass);
            if (is(rsrcClass, "BACKPLANE") && p == 1 && n1Valid)
                return printInto(target, size, "%s::%d::%s", intf, asSigned(n1), rsrcClass);
            if ((is(rsrcClass, "MEMACC") || (is(rsrcClass, "SERVANT") && getIntfType() == VI_INTF_VXI)) && p == 0)
                return printInto(target, size, "%s::%s", intf, rsrcClass);
            return;
        case VI_INTF_ASRL:
            if (instr && p == 0) return printInto(target, size, "%s::%s", intf, rsrcClass);
            return;
        case VI_INTF_PXI:
            if (instr) return useLegacyPxi() ? buildPxiLegacyName(target, size) : buildPxiBdfName(target, size);
            if (is(rsrcClass, "MEMACC") && p == 0) return printInto(target, size, "%s::%s", intf, rsrcClass);
            if (is(rsrcClass, "BACKPLANE") && p == 1)
                return printInto(target, size, "%s::%d::%s", intf, asSigned(n1), rsrcClass);
            return;
        case VI_INTF_TCPIP:
            if (instr && (p == 1 || p == 2))
                return printInto(target, size, "%s::%s::%s::%s", intf, getParam(1), p == 1 ? "inst0" : getParam(2),
                                 rsrcClass);
            if (is(rsrcClass, "SERVANT") && (p == 0 || p == 1))
                return printInto(target, size, "%s::%s::%s", intf, p == 0 ? "inst0" : getParam(1), rsrcClass);
            if (is(rsrcClass, "SOCKET") && p == 2 && n2Valid)
                return printInto(target, size, "%s::%s::%d::%s", intf, getParam(1), asSigned(n2), rsrcClass);
            if (is(rsrcClass, "INTFC") && p == 2)
                return printInto(target, size, "%s::%s::%s::%s", intf, getParam(1), getParam(2), rsrcClass);
            if (is(rsrcClass, "INTFC") && p == 0) return printInto(target, size, "%s::%s", intf, rsrcClass);
            return;
        case VI_INTF_USB:
            return writeUsbName(target, size, UsbIds::Hexadecimal);
        case VI_INTF_RSIB:
            if (instr && p == 1) return printInto(target, size, "%s::%s::%s", intf, getParam(1), rsrcClass);
            if (instr && p == 2)
                return printInto(target, size, "%s::%s::%d::%s", intf, getParam(1), asSigned(n2), rsrcClass);
            return;
        default:
            return;
    }
}

// USB INSTR in either writing of the identifiers; without an interface
// number the instrument is on interface 0.
void IoParms::writeUsbName(char* target, std::uint32_t size, UsbIds ids) {
    const int p = getParamCount();
    if (!is(classText(), "INSTR") || (p != 3 && p != 4)) return;
    const std::uint32_t vendor = getNumParam(1);
    const std::uint32_t product = getNumParam(2);
    const std::uint32_t intfNumber = p == 4 ? getNumParam(4) : 0;
    if (vendor == kNotANumber || product == kNotANumber || intfNumber == kNotANumber) return;
    if (ids == UsbIds::Hexadecimal)
        printInto(target, size, "%s::0x%04X::0x%04X::%s::%u::%s", intfName_, vendor, product, getParam(3), intfNumber,
                  classText());
    else
        printInto(target, size, "%s::%d::%d::%s::%u::%s", intfName_, asSigned(vendor), asSigned(product), getParam(3),
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
        printInto(canonicalName_.text.get(), size, "%s::%s::%s::%s::%s", intfName_, chassis, slot, function,
                  classText());
    return true;
}

void IoParms::buildPxiBdfName(char* target, std::uint32_t size) {
    const int p = getParamCount();
    const std::uint32_t n1 = getNumParam(1);
    const char* rsrcClass = classText();
    const char* typeWord = getIntfTypeStr() != nullptr ? getIntfTypeStr() : "";
    if (n1 != kNotANumber) {
        // Old writing: bus in the interface element, device as parameter.
        if (p == 1 || p == 2)
            printInto(target, size, "%s%d::%d-%d.%d::%s", typeWord, 0, asSigned(getNumParam(0)), asSigned(n1),
                      p == 2 ? asSigned(getNumParam(2)) : 0, rsrcClass);
        return;
    }
    if (p == 1) {
        char busDevice[kPxiPartChars + 3];
        ctext::copyBounded(busDevice, getParam(1), kPxiPartChars);
        if (std::strchr(busDevice, '.') == nullptr) std::strcat(busDevice, ".0");
        printInto(target, size, "%s::%s::%s", intfName_, busDevice, rsrcClass);
        return;
    }
    writePxiChassisName(size);
}

void IoParms::buildPxiLegacyName(char* target, std::uint32_t size) {
    const int p = getParamCount();
    const std::uint32_t n1 = getNumParam(1);
    const char* rsrcClass = classText();
    const char* typeWord = getIntfTypeStr() != nullptr ? getIntfTypeStr() : "";
    if (n1 != kNotANumber) {
        if (p == 1 || p == 2)
            printInto(target, size, "%s%d::%d::%d::%s", typeWord, asSigned(getNumParam(0)), asSigned(n1),
                      p == 2 ? asSigned(getNumParam(2)) : 0, rsrcClass);
        return;
    }
    if (p == 1) {
        int bus = 0;
        int device = 0;
        int function = 0;
        if (ctext::scanBusDeviceFunction(getParam(1), bus, device, function) >= 2)
            printInto(target, size, "%s%d::%d::%d::%s", typeWord, bus, device, function, rsrcClass);
        return;
    }
    writePxiChassisName(size);
}

}  // namespace braxcfg::rsrc
