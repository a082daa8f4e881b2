#pragma once
// What the .reg reader, writer, importer and exporter share: the header
// words, hex digits, line ends, full key paths as the text spells them,
// the error a file gets, and store results in words for its messages.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/reg_types.h"

namespace braxcfg::platform::regfile {

inline constexpr std::string_view kRegedit4Header = "REGEDIT4";
inline constexpr std::string_view kVersion5Header = "Windows Registry Editor Version 5.00";

constexpr bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

constexpr unsigned hexDigitValue(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    return static_cast<unsigned>(c - 'A' + 10);
}

// Splits at LF, CRLF and CR; the text after the last line end is a line too.
std::vector<std::string_view> splitLines(std::string_view text);

// Full key paths ("HKEY_LOCAL_MACHINE\SOFTWARE\x") and the part below the
// root that the store addresses.
inline constexpr std::string_view kLocalMachineName = "HKEY_LOCAL_MACHINE";

enum class RootKind {
    LocalMachine,  // the one root this store keeps
    OtherRoot,     // a real registry root that the store does not keep
    Unknown,
};

struct SplitKeyPath {
    RootKind root = RootKind::Unknown;
    std::string rootText;  // the root word as written
    std::string relative;  // below the root: empty names dropped, one "\" between the rest
};

// The root word (up to the first "\") is matched without regard to case,
// with no abbreviations; runs of "\" and trailing "\" count as one or none,
// as the store treats them.
SplitKeyPath splitKeyPath(std::string_view fullPath);

// Why a path cannot name a key of the store, or nothing when its root is
// HKEY_LOCAL_MACHINE.
std::optional<std::string> rootProblem(const SplitKeyPath& path);

// "HKEY_LOCAL_MACHINE" followed by "\relative" when relative is not empty.
std::string fullKeyPath(std::string_view relative);

// The first thing wrong with a file. line is 0 for faults that belong to
// no line (the store refused a transaction).
struct RegError {
    int line = 0;
    std::string message;
};

// "line 7: ..." or the bare message when there is no line.
std::string describe(const RegError& error);

// A store result in words: "not found", "the disk is full", ...
std::string storeResultText(RegResult result);

}  // namespace braxcfg::platform::regfile
