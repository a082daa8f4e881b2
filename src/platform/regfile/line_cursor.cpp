#include "platform/regfile/line_cursor.h"

#include "platform/regfile/reg_grammar.h"

namespace braxcfg::platform::regfile {

std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') continue;
        lines.push_back(text.substr(start, i - start));
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        start = i + 1;
    }
    lines.push_back(text.substr(start));
    return lines;
}

std::string_view LineCursor::takeHexDigits() {
    const std::size_t start = pos_;
    while (!atEnd() && isHexDigit(line_[pos_])) ++pos_;
    return line_.substr(start, pos_ - start);
}

}  // namespace braxcfg::platform::regfile
