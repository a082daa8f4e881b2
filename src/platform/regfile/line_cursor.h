#pragma once
// Line splitting and a read position within one line, for the .reg reader.
#include <cstddef>
#include <string_view>
#include <vector>

namespace braxcfg::platform::regfile {

// Splits at LF, CRLF and CR; the text after the last line end is a line too.
std::vector<std::string_view> splitLines(std::string_view text);

class LineCursor {
public:
    explicit LineCursor(std::string_view line) : line_(line) {}

    bool atEnd() const { return pos_ >= line_.size(); }
    // The character at the read position; NUL at the end.
    char peek() const { return atEnd() ? '\0' : line_[pos_]; }
    char next() { return atEnd() ? '\0' : line_[pos_++]; }
    std::string_view rest() const { return line_.substr(pos_); }
    void skip(std::size_t count) { pos_ = pos_ + count > line_.size() ? line_.size() : pos_ + count; }

    void skipBlanks() {
        while (!atEnd() && (line_[pos_] == ' ' || line_[pos_] == '\t')) ++pos_;
    }
    // Moves past `word` when the rest starts with it.
    bool consume(std::string_view word) {
        if (!rest().starts_with(word)) return false;
        pos_ += word.size();
        return true;
    }
    // Skips blanks; true when nothing or only a ";" comment remains.
    bool atEndOrComment() {
        skipBlanks();
        return atEnd() || peek() == ';';
    }
    // The run of hex digits at the read position, moved past.
    std::string_view takeHexDigits();

private:
    std::string_view line_;
    std::size_t pos_ = 0;
};

}  // namespace braxcfg::platform::regfile
