#include "rsrc/name_format.h"

#include <cstdarg>
#include <cstring>

namespace braxcfg::rsrc {
namespace {

class BoundedWriter {
public:
    BoundedWriter(char* target, std::uint32_t size) : target_(target), room_(size > 0 ? size - 1 : 0) {}
    ~BoundedWriter() {
        if (target_ != nullptr) *target_ = '\0';
    }
    BoundedWriter(const BoundedWriter&) = delete;
    BoundedWriter& operator=(const BoundedWriter&) = delete;

    void put(const char* text, std::size_t length) {
        const std::size_t n = length < room_ ? length : room_;
        std::memcpy(target_, text, n);
        target_ += n;
        room_ -= n;
    }
    void put(const char* text) { put(text, std::strlen(text)); }

    // Digits of `value` in `base`, at least `minDigits` of them.
    void putUnsigned(std::uint32_t value, unsigned base, int minDigits) {
        char digits[16];
        int n = 0;
        do {
            digits[n++] = "0123456789ABCDEF"[value % base];
            value /= base;
        } while (value != 0);
        while (n < minDigits) digits[n++] = '0';
        char ordered[16];
        for (int i = 0; i < n; ++i) ordered[i] = digits[n - 1 - i];
        put(ordered, static_cast<std::size_t>(n));
    }
    void putSigned(int value) {
        const auto magnitude = static_cast<std::uint32_t>(value);
        if (value < 0) {
            put("-", 1);
            putUnsigned(0u - magnitude, 10, 1);
        } else {
            putUnsigned(magnitude, 10, 1);
        }
    }

private:
    char* target_;
    std::size_t room_;
};

}  // namespace

void formatName(char* target, std::uint32_t size, const char* format, ...) {
    if (size == 0) return;
    BoundedWriter out(target, size);
    va_list args;
    va_start(args, format);
    for (const char* p = format; *p != '\0'; ++p) {
        const char* percent = std::strchr(p, '%');
        if (percent == nullptr) {
            out.put(p);
            break;
        }
        out.put(p, static_cast<std::size_t>(percent - p));
        p = percent + 1;
        if (*p == 's') {
            out.put(va_arg(args, const char*));
        } else if (*p == 'd') {
            out.putSigned(va_arg(args, int));
        } else if (*p == 'u') {
            out.putUnsigned(va_arg(args, unsigned), 10, 1);
        } else if (std::strncmp(p, "04X", 3) == 0) {
            out.putUnsigned(va_arg(args, unsigned), 16, 4);
            p += 2;
        } else {
            out.put(percent, 1);
            --p;
        }
    }
    va_end(args);
}

}  // namespace braxcfg::rsrc
