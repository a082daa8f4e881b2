#include "visacore/err_log.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "platform/debug_output.h"

namespace braxcfg::visa {

ViStatus errLog(ViStatus status, const char* format, ...) {
    if (format == nullptr) return status;
    va_list args;
    va_start(args, format);
    va_list sizing;
    va_copy(sizing, args);
    const int length = std::vsnprintf(nullptr, 0, format, sizing);
    va_end(sizing);
    std::string line;
    if (length > 0) {
        line.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(line.data(), line.size(), format, args);
        line.resize(static_cast<std::size_t>(length));
    }
    va_end(args);
    // Each record is one line; the status leads so a captured log says what
    // the caller returned.
    char prefix[32];
    std::snprintf(prefix, sizeof prefix, "0x%08X: ", static_cast<unsigned>(status));
    platform::debugOutput(prefix + line + "\n");
    return status;
}

}  // namespace braxcfg::visa
