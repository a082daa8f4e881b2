#include "platform/regfile/reg_writer.h"

#include <cstdio>

#include "platform/cp1252.h"
#include "platform/regfile/reg_format.h"

namespace braxcfg::platform::regfile {
namespace {

constexpr std::size_t kHexWrapColumn = 77;
constexpr std::string_view kContinuationIndent = "  ";

std::string hexTypePrefix(RegType type) {
    if (type == kRegBinary) return "hex:";
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "hex(%x):", static_cast<unsigned>(type));
    return buffer;
}

void appendHexBytes(std::string& line, std::string_view bytes, std::string_view lineEnd) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::size_t column = line.size();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        line += kDigits[byte >> 4];
        line += kDigits[byte & 0x0F];
        if (i + 1 == bytes.size()) break;
        line += ',';
        column += 3;
        if (column >= kHexWrapColumn) {
            line += '\\';
            line += lineEnd;
            line += kContinuationIndent;
            column = kContinuationIndent.size();
        }
    }
}

// A quoted string reads back as its text plus one NUL, so only data of
// exactly that shape may be written as one; anything else (no terminator,
// no bytes at all, a NUL inside) goes out as hex(1) and reads back as it was.
bool isQuotableString(std::string_view bytes) {
    return !bytes.empty() && bytes.find('\0') == bytes.size() - 1;
}

std::uint32_t littleEndianDword(std::string_view bytes) {
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i) value = (value << 8) | static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
    return value;
}

}  // namespace

std::string escapeRegString(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '\\':
                out += "\\\\";
                break;
            case '"':
                out += "\\\"";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string formatRegValue(std::string_view name, RegType type, std::string_view bytes, std::string_view lineEnd) {
    // Appended piece by piece: GCC 12 at -O3 takes `"\"" + std::string`
    // for an overlapping copy (-Wrestrict).
    std::string line = name.empty() ? "@=" : "\"";
    if (!name.empty()) line.append(escapeRegString(name)).append("\"=");
    if (type == kRegSz && isQuotableString(bytes)) {
        line.append("\"").append(escapeRegString(bytes.substr(0, bytes.size() - 1))).append("\"");
        return line;
    }
    if (type == kRegDword && bytes.size() == 4) {
        char buffer[16];
        std::snprintf(buffer, sizeof buffer, "dword:%08x", static_cast<unsigned>(littleEndianDword(bytes)));
        return line + buffer;
    }
    line += hexTypePrefix(type);
    appendHexBytes(line, isTextType(type) ? cp1252ToUtf16Le(bytes) : std::string(bytes), lineEnd);
    return line;
}

RegWriter::RegWriter(RegTextEncoding encoding)
    : encoding_(encoding), lineEnd_(encoding == RegTextEncoding::Utf16 ? "\r\n" : "\n") {
    text_ += kVersion5Header;
    text_ += lineEnd_;
}

void RegWriter::key(std::string_view relativePath) {
    text_ += lineEnd_;
    text_ += '[';
    text_ += fullKeyPath(relativePath);
    text_ += ']';
    text_ += lineEnd_;
}

void RegWriter::value(std::string_view name, RegType type, std::string_view bytes) {
    text_ += formatRegValue(name, type, bytes, lineEnd_);
    text_ += lineEnd_;
}

std::string RegWriter::finish() {
    text_ += lineEnd_;
    if (encoding_ == RegTextEncoding::Utf8) return cp1252ToUtf8(text_);
    return "\xFF\xFE" + cp1252ToUtf16Le(text_);
}

}  // namespace braxcfg::platform::regfile
