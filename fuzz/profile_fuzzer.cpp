// Profile files come from the installation and may hold anything: a lookup
// must end, never read out of bounds, and respect the caller's buffer size.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/profile_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using braxcfg::platform::lookupProfileString;
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    for (const char* section : {"Cfg232", "", "a]b"}) {
        for (const char* key : {"VISAAutoConfig", "", "k"}) {
            if (lookupProfileString(content, section, key, "d", 8).size() > 7) std::abort();
            lookupProfileString(content, section, key, "");
        }
    }
    return 0;
}
