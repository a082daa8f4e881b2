// Resource strings from outside: parse, both canonical forms and the dump
// must never crash, read out of bounds or break the record's invariants,
// also when any one allocation fails. Both PXI builders run whichever
// naming is set (one fills the canonical name, the other the alternate),
// so the default naming is enough here.
//
// Input: one flags byte (bit 1: log errors; bits 4 to 6 all set: dump the
// record, which reads the VISA configuration and is slow, so only some
// inputs do; bit 7: fail an allocation), one byte choosing which
// allocation fails, then the resource string.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/store.h"
#include "rsrc/allocation.h"
#include "rsrc/io_parms.h"

namespace {

using braxcfg::rsrc::IoParms;

std::FILE* g_sink = nullptr;

void check(bool condition) {
    if (!condition) __builtin_trap();
}

// A store with a few interfaces, so the KORL lookups of the dump find keys
// to walk.
void makeStore(const std::string& path) {
    braxcfg::platform::openStore(path);
    const char* names[] = {"GPIB0", "TCPIP0", "PXI0", "USB0"};
    for (int n = 0; n < 4; ++n) {
        const braxcfg::platform::Registry key("INTF" + std::to_string(n), braxcfg::platform::kRegOpenOrCreate);
        key.setString("VISAName", names[n]);
        key.setString("VISAKorlIntfName", std::string("K") + names[n]);
        key.setDword("VISAExportEnabled", static_cast<std::uint32_t>(n & 1));
    }
}

void checkRecord(IoParms& parms, braxcfg::visa::ViStatus status) {
    check(parms.getCount() >= 0 && parms.getCount() <= IoParms::kMaxElements);
    check(parms.getParam(parms.getCount()) == nullptr);
    check(std::strlen(parms.getIntfName()) < IoParms::kIntfNameSize);
    char small[8];
    const char* canonical = parms.getCanonicalName(small, sizeof small);
    check(canonical == small && std::strlen(small) < sizeof small);
    const char* own = parms.getCanonicalName(nullptr, 0);
    if (status >= 0) check(own != nullptr && *own != '\0');
    char alternate[IoParms::kNameBufferSize];
    check(std::strlen(parms.getAltName(alternate, sizeof alternate)) < sizeof alternate);
    for (int i = -1; i <= parms.getCount(); ++i) parms.getNumParam(i);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    char dir[] = "/tmp/rsrc_fuzzer.XXXXXX";
    if (mkdtemp(dir) == nullptr) std::abort();
    makeStore(std::string(dir) + "/store.db");
    g_sink = std::fopen("/dev/null", "w");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::uint8_t flags = data[0];
    std::vector<char> text(reinterpret_cast<const char*>(data) + 2, reinterpret_cast<const char*>(data) + size);
    text.push_back('\0');

    IoParms parms;
    braxcfg::visa::ViStatus status;
    {
        const braxcfg::rsrc::ScopedAllocationFault fault((flags & 0x80) != 0 ? data[1] % 12 + 1 : 0);
        status = parms.parse(text.data(), (flags & 2) != 0);
        checkRecord(parms, status);
    }
    if ((flags & 0x70) == 0x70) parms.dump(g_sink);

    // A record is reused: the same string again must give the same answer.
    std::vector<char> again(reinterpret_cast<const char*>(data) + 2, reinterpret_cast<const char*>(data) + size);
    again.push_back('\0');
    IoParms fresh;
    const braxcfg::visa::ViStatus first = fresh.parse(again.data(), false);
    again.assign(text.begin(), text.end());
    check(fresh.parse(again.data(), false) == first);
    checkRecord(fresh, first);
    return 0;
}
