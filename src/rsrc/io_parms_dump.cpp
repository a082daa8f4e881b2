// What IoParms learns from the VISA configuration, and its printed form.
#include <cstdint>
#include <exception>

#include "rsrc/io_parms.h"
#include "visacore/config/use_registry.h"

namespace braxcfg::rsrc {
namespace {

constexpr int kKorlNameBufferSize = 1024;

// A text slot of the dump: the text, or what the C library prints for a
// null text, so a record left half-built by an allocation failure prints.
const char* shown(const char* text) { return text != nullptr ? text : "(null)"; }

void printQuotedOrNull(std::FILE* out, const char* label, const char* text) {
    if (text != nullptr)
        std::fprintf(out, "   %s= '%s'\n", label, text);
    else
        std::fprintf(out, "   %s= NULL\n", label);
}

}  // namespace

// The configuration objects read the store through strings of their own;
// running out of memory there reads as "no name" and "not exported".
char* IoParms::getKorlIntfName(char* buf, int /*size*/) {
    if (buf == nullptr) return buf;
    buf[0] = '\0';
    try {
        const visa::VisaIntfConfig config = visa::openVisaIntfConfig(intfName_);
        if (config.intf != nullptr) config.intf->getKorlIntfName(buf);
    } catch (const std::exception&) {
        buf[0] = '\0';
    }
    return buf;
}

bool IoParms::isExportEnabled() {
    try {
        const visa::VisaIntfConfig config = visa::openVisaIntfConfig(intfName_);
        return config.intf != nullptr && (config.intf->isExportEnabled() & 0xFFFFu) != 0;
    } catch (const std::exception&) {
        return false;
    }
}

void IoParms::dump() { dump(stdout); }

void IoParms::dump(std::FILE* out) {
    std::fprintf(out, "\nIoParms instance: 0x%lx\n",
                 static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(this)));
    dumpFields(out);
}

void IoParms::dumpFields(std::FILE* out) {
    printQuotedOrNull(out, "rsrcString    ", getRsrcString());
    std::fprintf(out, "   canonicalName = '%s'\n", shown(getCanonicalName(nullptr, 0)));
    std::fprintf(out, "   count         = %d\n", count_);
    std::fprintf(out, "   lastError     = %d\n", static_cast<int>(lastError_));
    printQuotedOrNull(out, "intfTypeStr   ", getIntfTypeStr());
    std::fprintf(out, "   intfType      = %d\n", static_cast<int>(getIntfType()));
    printQuotedOrNull(out, "rsrcClassStr  ", rsrcClassStr_.text.get());
    std::fprintf(out, "   intfName      = '%s'\n", intfName_);
    std::fprintf(out, "   board#        = %d\n", static_cast<int>(getNumParam(0)));
    char korlName[kKorlNameBufferSize] = {};
    std::fprintf(out, "   korlIntfName  = '%s'\n", shown(getKorlIntfName(korlName, kKorlNameBufferSize)));
    std::fprintf(out, "   exportEnabled = %d\n", isExportEnabled() ? 1 : 0);
    const int paramCount = getParamCount();
    std::fprintf(out, "   pCount        = %d\n", paramCount);
    for (int i = 0; i <= paramCount + 1; ++i)
        std::fprintf(out, "      %3d:  %10d, '%s'\n", i, static_cast<int>(getNumParam(i)), shown(getParam(i)));
    std::fprintf(out, "\n");
}

}  // namespace braxcfg::rsrc
