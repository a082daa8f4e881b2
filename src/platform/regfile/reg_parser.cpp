#include "platform/regfile/reg_parser.h"

#include <algorithm>

#include "platform/cp1252.h"
#include "platform/regfile/reg_decode.h"

namespace braxcfg::platform::regfile {
namespace {

// A read position within one line.
class LineCursor {
public:
    explicit LineCursor(std::string_view line) : line_(line) {}

    bool atEnd() const { return pos_ >= line_.size(); }
    // The character at the read position; NUL at the end.
    char peek() const { return atEnd() ? '\0' : line_[pos_]; }
    char next() { return atEnd() ? '\0' : line_[pos_++]; }
    std::string_view rest() const { return line_.substr(pos_); }

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
    std::string_view takeHexDigits() {
        const std::size_t start = pos_;
        while (!atEnd() && isHexDigit(line_[pos_])) ++pos_;
        return line_.substr(start, pos_ - start);
    }

private:
    std::string_view line_;
    std::size_t pos_ = 0;
};

// Quotes a piece of the offending text for a message, shortened so that a
// runaway line does not flood the terminal. Built by appending: GCC 12 at
// -O3 takes `"\"" + std::string(...)` for an overlapping copy (-Wrestrict).
std::string quoted(std::string_view text) {
    constexpr std::size_t kShown = 60;
    std::string out = "\"";
    out += text.substr(0, kShown);
    if (text.size() > kShown) out += "...";
    out += '"';
    return out;
}

std::string_view trimTrailingBlanks(std::string_view text) {
    const std::size_t end = text.find_last_not_of(" \t");
    return end == std::string_view::npos ? std::string_view{} : text.substr(0, end + 1);
}

bool isBlankOrSemicolonComment(std::string_view line) {
    LineCursor cursor(line);
    return cursor.atEndOrComment();
}

std::string littleEndianDword(std::uint32_t value) {
    std::string bytes(4, '\0');
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<char>((value >> (8 * i)) & 0xFF);
    return bytes;
}

class RegParser {
public:
    explicit RegParser(std::string_view text) : lines_(splitLines(text)) {}
    RegParseResult run();

private:
    int lineNumber() const { return static_cast<int>(index_) + 1; }
    bool fail(int line, std::string message) {
        error_ = RegError{line, std::move(message)};
        return false;
    }
    bool fail(std::string message) { return fail(lineNumber(), std::move(message)); }
    bool checkNoNul(std::string_view line) {
        return line.find('\0') == std::string_view::npos || fail("the line contains a NUL character");
    }

    bool parseHeader();
    bool parseLine(std::string_view line);
    bool parseKeyLine(LineCursor& cursor);
    bool parseValueLine(LineCursor& cursor);
    bool parseQuoted(LineCursor& cursor, std::string& out, const char* what);
    bool parseData(LineCursor& cursor, RegOp& op);
    bool parseDword(LineCursor& cursor, RegOp& op);
    bool parseHexType(LineCursor& cursor, RegType& type);
    bool parseHexList(LineCursor& cursor, std::string& bytes);
    bool continueHexList(LineCursor& cursor);
    bool textFromHex(RegOp& op);

    std::vector<std::string_view> lines_;
    std::size_t index_ = 0;
    RegVersion version_ = RegVersion::Version5;
    std::optional<std::string> currentKey_;  // where value lines go; none before a key line
    bool afterDeletedKey_ = false;
    std::vector<RegOp> ops_;
    std::optional<RegError> error_;
};

RegParseResult RegParser::run() {
    RegParseResult result;
    bool ok = parseHeader();
    for (index_ = 1; ok && index_ < lines_.size(); ++index_) ok = parseLine(lines_[index_]);
    result.version = version_;
    if (ok) {
        result.ops = std::move(ops_);
    } else {
        result.error = error_;
    }
    return result;
}

bool RegParser::parseHeader() {
    index_ = 0;
    if (!checkNoNul(lines_[0])) return false;
    LineCursor cursor(lines_[0]);
    cursor.skipBlanks();
    const std::string_view header = trimTrailingBlanks(cursor.rest());
    if (header == kRegedit4Header) {
        version_ = RegVersion::Regedit4;
    } else if (header == kVersion5Header) {
        version_ = RegVersion::Version5;
    } else if (header == "REGEDIT") {
        return fail("the Windows 3.1 REGEDIT format is not supported");
    } else {
        return fail("unknown header " + quoted(header) + ": the first line must be " +
                    std::string(kRegedit4Header) + " or " + std::string(kVersion5Header));
    }
    return true;
}

bool RegParser::parseLine(std::string_view line) {
    if (!checkNoNul(line)) return false;
    LineCursor cursor(line);
    cursor.skipBlanks();
    switch (cursor.peek()) {
        case '\0':
        case ';':
        case '#':
            return true;
        case '[':
            cursor.next();
            return parseKeyLine(cursor);
        case '@':
        case '"':
            return parseValueLine(cursor);
        default:
            return fail("unexpected text " + quoted(cursor.rest()) +
                        ": a line holds a [key], a \"name\"= or @= value, or a ; comment");
    }
}

bool RegParser::parseKeyLine(LineCursor& cursor) {
    const bool deletes = cursor.consume("-");
    const std::string_view rest = cursor.rest();
    const std::size_t close = rest.rfind(']');
    if (close == std::string_view::npos) return fail("the key line has no closing ]");
    LineCursor after(rest.substr(close + 1));
    if (!after.atEndOrComment()) return fail("unexpected text " + quoted(after.rest()) + " after the key line");

    const SplitKeyPath path = splitKeyPath(rest.substr(0, close));
    if (auto problem = rootProblem(path)) return fail(std::move(*problem));
    for (std::size_t start = 0; start < path.relative.size();) {
        const std::size_t end = std::min(path.relative.find('\\', start), path.relative.size());
        if (end - start > kMaxKeyNameLength)
            return fail("the key name " + quoted(path.relative.substr(start, end - start)) + " is longer than " +
                        std::to_string(kMaxKeyNameLength) + " characters");
        start = end + 1;
    }

    RegOp op;
    op.line = lineNumber();
    op.keyPath = path.relative;
    if (deletes) {
        if (path.relative.empty()) return fail("the root key cannot be deleted");
        op.kind = RegOpKind::DeleteKey;
        currentKey_.reset();
        afterDeletedKey_ = true;
    } else {
        op.kind = RegOpKind::CreateKey;
        currentKey_ = path.relative;
    }
    ops_.push_back(std::move(op));
    return true;
}

bool RegParser::parseValueLine(LineCursor& cursor) {
    if (!currentKey_)
        return fail(afterDeletedKey_ ? "a value line after a [-key] line, with no [key] line to hold it"
                                     : "a value line before any [key] line");
    RegOp op;
    op.line = lineNumber();
    op.keyPath = *currentKey_;
    const bool named = cursor.next() == '"';  // otherwise "@", the default value
    if (named && !parseQuoted(cursor, op.name, "value name")) return false;
    if (op.name.size() > kMaxValueNameLength)
        return fail("the value name is longer than " + std::to_string(kMaxValueNameLength) + " characters");
    cursor.skipBlanks();
    if (!cursor.consume("=")) return fail("expected = after the value name");
    cursor.skipBlanks();
    if (!parseData(cursor, op)) return false;
    ops_.push_back(std::move(op));
    return true;
}

// Reads up to the closing quote; the opening one is already consumed.
bool RegParser::parseQuoted(LineCursor& cursor, std::string& out, const char* what) {
    while (!cursor.atEnd()) {
        const char c = cursor.next();
        if (c == '"') return true;
        if (c != '\\') {
            out += c;
            continue;
        }
        switch (const char escaped = cursor.next()) {
            case '\\':
            case '"':
                out += escaped;
                break;
            case 'n':
                out += '\n';
                break;
            case 'r':
                out += '\r';
                break;
            case '\0':
                return fail(std::string("the ") + what + " has no closing quote");
            case '0':
                return fail(std::string("\\0 is not allowed in a ") + what);
            default:
                return fail(std::string("unknown escape \\") + escaped + " in a " + what +
                            " (a backslash is written \\\\)");
        }
    }
    return fail(std::string("the ") + what + " has no closing quote");
}

bool RegParser::parseData(LineCursor& cursor, RegOp& op) {
    if (cursor.consume("-")) {
        op.kind = RegOpKind::DeleteValue;
        return cursor.atEndOrComment() || fail("unexpected text " + quoted(cursor.rest()) + " after =-");
    }
    op.kind = RegOpKind::SetValue;
    if (cursor.consume("\"")) {
        op.type = kRegSz;
        if (!parseQuoted(cursor, op.data, "string")) return false;
        op.data += '\0';
        return cursor.atEndOrComment() ||
               fail("unexpected text " + quoted(cursor.rest()) + " after the string's closing quote");
    }
    if (cursor.consume("dword:")) return parseDword(cursor, op);
    if (cursor.consume("hex:")) {
        op.type = kRegBinary;
        return parseHexList(cursor, op.data);
    }
    if (cursor.consume("hex(")) return parseHexType(cursor, op.type) && parseHexList(cursor, op.data) && textFromHex(op);
    return fail("unknown data " + quoted(cursor.rest()) + ": expected \"text\", dword:, hex:, hex(N): or -");
}

bool RegParser::parseDword(LineCursor& cursor, RegOp& op) {
    cursor.skipBlanks();
    const std::string_view digits = cursor.takeHexDigits();
    if (digits == "0" && (cursor.peek() == 'x' || cursor.peek() == 'X'))
        return fail("dword: takes hex digits without 0x");
    if (digits.empty()) return fail("dword: needs 1 to 8 hex digits");
    if (digits.size() > 8) return fail("dword: has more than 8 hex digits");
    if (!cursor.atEndOrComment()) return fail("unexpected text " + quoted(cursor.rest()) + " after the dword");
    std::uint32_t value = 0;
    for (const char c : digits) value = (value << 4) | hexDigitValue(c);
    op.type = kRegDword;
    op.data = littleEndianDword(value);
    return true;
}

bool RegParser::parseHexType(LineCursor& cursor, RegType& type) {
    const std::string_view digits = cursor.takeHexDigits();
    if (digits.empty() || digits.size() > 8) return fail("hex(N) needs a type number of 1 to 8 hex digits");
    if (!cursor.consume("):")) return fail("expected ): after the type number of hex(N)");
    type = 0;
    for (const char c : digits) type = (type << 4) | hexDigitValue(c);
    return true;
}

bool RegParser::parseHexList(LineCursor& cursor, std::string& bytes) {
    bool afterByte = false;
    for (;;) {
        if (cursor.atEndOrComment()) return true;
        const char c = cursor.peek();
        if (c == '\\') {
            if (afterByte) return fail("a \\ continues a hex list only after a comma");
            cursor.next();
            if (!continueHexList(cursor)) return false;
        } else if (afterByte) {
            if (c != ',') return fail("expected a comma or the end of the line after a hex byte");
            cursor.next();
            afterByte = false;
        } else {
            const std::string_view digits = cursor.takeHexDigits();
            if (digits.empty()) return fail("expected a hex byte, found " + quoted(cursor.rest()));
            if (digits.size() > 2) return fail("the hex byte " + quoted(digits) + " has more than two digits");
            unsigned value = 0;
            for (const char d : digits) value = (value << 4) | hexDigitValue(d);
            bytes += static_cast<char>(value);
            afterByte = true;
        }
    }
}

// After a continuing "\": moves the cursor to the next line holding data.
bool RegParser::continueHexList(LineCursor& cursor) {
    if (!cursor.atEndOrComment())
        return fail("unexpected text " + quoted(cursor.rest()) + " after the \\ that continues the hex list");
    const int continuedFrom = lineNumber();
    do {
        ++index_;
    } while (index_ < lines_.size() && isBlankOrSemicolonComment(lines_[index_]));
    if (index_ >= lines_.size()) {
        index_ = lines_.size() - 1;
        return fail(continuedFrom, "the file ends where the hex list continued by \\ should go on");
    }
    if (!checkNoNul(lines_[index_])) return false;
    cursor = LineCursor(lines_[index_]);
    cursor.skipBlanks();
    if (!isHexDigit(cursor.peek()))
        return fail("expected a hex byte continuing the hex list of line " + std::to_string(continuedFrom));
    return true;
}

// Text types in hex form: narrow bytes after REGEDIT4, UTF-16LE after the
// version 5.00 header. The store gets exactly the units listed, converted:
// no NUL is added, so data written without a terminator comes back so.
bool RegParser::textFromHex(RegOp& op) {
    if (!isTextType(op.type)) return true;
    if (version_ == RegVersion::Version5) {
        const std::string units = std::move(op.data);
        if (units.size() % 2 != 0)
            return fail(op.line, "hex(" + std::to_string(op.type) +
                                     ") text after the version 5.00 header is UTF-16LE and needs an even "
                                     "number of bytes");
        op.data.clear();
        if (auto message = appendNarrow(units, UnicodeForm::Utf16Le, op.data))
            return fail(op.line, "hex(" + std::to_string(op.type) + ") text: " + *message);
    }
    return true;
}

}  // namespace

RegParseResult parseRegText(std::string_view narrowText) { return RegParser(narrowText).run(); }

RegParseResult parseRegFile(std::string_view bytes) {
    NarrowRegText text = decodeRegFile(bytes);
    if (text.error) {
        RegParseResult result;
        result.error = text.error;
        return result;
    }
    return parseRegText(text.text);
}

}  // namespace braxcfg::platform::regfile
