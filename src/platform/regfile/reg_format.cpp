#include "platform/regfile/reg_format.h"

#include <array>

namespace braxcfg::platform::regfile {
namespace {

constexpr std::array<std::string_view, 5> kOtherRoots = {
    "HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER", "HKEY_USERS", "HKEY_CURRENT_CONFIG", "HKEY_DYN_DATA",
};

bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

RootKind classifyRoot(std::string_view word) {
    if (equalsIgnoringAsciiCase(word, kLocalMachineName)) return RootKind::LocalMachine;
    for (const std::string_view other : kOtherRoots)
        if (equalsIgnoringAsciiCase(word, other)) return RootKind::OtherRoot;
    return RootKind::Unknown;
}

}  // namespace

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

SplitKeyPath splitKeyPath(std::string_view fullPath) {
    SplitKeyPath split;
    const std::size_t slash = fullPath.find('\\');
    split.rootText = std::string(fullPath.substr(0, slash));
    split.root = classifyRoot(split.rootText);
    if (slash == std::string_view::npos) return split;
    std::string_view rest = fullPath.substr(slash + 1);
    while (!rest.empty()) {
        const std::size_t end = rest.find('\\');
        const std::string_view name = rest.substr(0, end);
        if (!name.empty()) {
            if (!split.relative.empty()) split.relative += '\\';
            split.relative += name;
        }
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
    return split;
}

std::optional<std::string> rootProblem(const SplitKeyPath& path) {
    switch (path.root) {
        case RootKind::LocalMachine:
            return std::nullopt;
        case RootKind::OtherRoot:
            return "only HKEY_LOCAL_MACHINE is kept in the store, not " + path.rootText;
        case RootKind::Unknown:
            break;
    }
    return "unknown root key \"" + path.rootText + "\" (a full key path starts with HKEY_LOCAL_MACHINE)";
}

std::string fullKeyPath(std::string_view relative) {
    std::string full(kLocalMachineName);
    if (!relative.empty()) {
        full += '\\';
        full += relative;
    }
    return full;
}

std::string describe(const RegError& error) {
    if (error.line <= 0) return error.message;
    return "line " + std::to_string(error.line) + ": " + error.message;
}

std::string storeResultText(RegResult result) {
    switch (result) {
        case kErrorFileNotFound:
            return "not found";
        case kErrorAccessDenied:
            return "access denied";
        case kErrorInvalidParameter:
            return "invalid name or parameter";
        case kErrorBadPathname:
            return "bad path name";
        case kErrorKeyDeleted:
            return "the key was deleted";
        case kErrorBadDatabase:
            return "the store file is damaged";
        case kErrorCantWrite:
            return "the store cannot be written";
        case kErrorBusy:
            return "the store is busy";
        case kErrorDiskFull:
            return "the disk is full";
        default:
            return "store error " + std::to_string(result);
    }
}

}  // namespace braxcfg::platform::regfile
