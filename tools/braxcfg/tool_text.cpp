#include "tool_text.h"

#include <unistd.h>

#include <cstdio>

#include "platform/cp1252.h"

namespace braxcfg::tool {
namespace {

bool isControl(char32_t cp) { return cp < 0x20 || (cp >= 0x7F && cp < 0xA0); }

std::string forStream(int fd, std::string_view text, std::string_view keep) {
    return ::isatty(fd) ? escapedUtf8(text, keep) : platform::cp1252ToUtf8(text);
}

}  // namespace

bool toSystemText(const std::string& argument, std::string& out, std::string& error) {
    out.clear();
    if (const auto problem = platform::appendNarrow(argument, platform::UnicodeForm::Utf8, out)) {
        error = "the argument '" + argument + "' cannot be used: " + *problem;
        return false;
    }
    return true;
}

std::string escapedUtf8(std::string_view text, std::string_view keep) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (isControl(platform::cp1252ToUnicode(byte)) && keep.find(c) == std::string_view::npos) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            out += escaped;
        } else {
            out += platform::cp1252ToUtf8(std::string_view(&c, 1));
        }
    }
    return out;
}

std::string forStdout(std::string_view text, std::string_view keep) { return forStream(STDOUT_FILENO, text, keep); }
std::string forStderr(std::string_view text, std::string_view keep) { return forStream(STDERR_FILENO, text, keep); }

std::string padded(std::string utf8, std::size_t width) {
    std::size_t characters = 0;
    for (const char c : utf8) characters += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    if (characters < width) utf8.append(width - characters, ' ');
    return utf8;
}

}  // namespace braxcfg::tool
