#pragma once
// Full key paths as .reg text spells them ("HKEY_LOCAL_MACHINE\SOFTWARE\x")
// and the part below the root that the store addresses.
#include <optional>
#include <string>
#include <string_view>

namespace braxcfg::platform::regfile {

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

}  // namespace braxcfg::platform::regfile
