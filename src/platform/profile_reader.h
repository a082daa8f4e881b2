#pragma once
// Reading one value from a private profile (INI) file, with the rules the
// Windows profile API applies, so that files written for that platform read
// the same here:
// - section and key names compare without regard to case (ASCII letters);
// - blanks around section names, key names and values are removed;
// - a value enclosed in a matching pair of quotes (' or ") loses them;
// - the first section of a name and the first key of a name in it win;
// - a line without "=" names a key without a value, which reads as missing;
// - lines starting with ";" are comments;
// - a missing file, section or key gives the default, whose trailing blanks
//   are removed;
// - the result is cut to maxChars - 1 characters, as a caller's buffer of
//   maxChars characters would hold it.
// Nothing throws and nothing is written.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace braxcfg::platform {

inline constexpr std::size_t kProfileUnlimited = static_cast<std::size_t>(-1);

// The value of `key` in `section` of the profile file at `path`.
std::string readProfileString(const std::string& path, std::string_view section, std::string_view key,
                              std::string_view defaultValue, std::size_t maxChars = kProfileUnlimited);

// The same over the text of a profile file already in memory.
std::string lookupProfileString(std::string_view content, std::string_view section, std::string_view key,
                                std::string_view defaultValue, std::size_t maxChars = kProfileUnlimited);

// Every section of a profile text, in file order, for readers that walk a
// whole file (a lab of instruments) rather than look one value up. Names
// and values are trimmed and a quoted value loses its quotes, as above;
// nothing is merged or dropped, so the caller sees duplicates and lines
// without "=" and decides what they mean. Line numbers count from 1.
struct ProfileEntry {
    std::string key;
    std::string value;
    int line = 0;
    bool hasEquals = false;
};
struct ProfileSection {
    std::string name;
    int line = 0;  // 0 for the lines before the first header
    std::vector<ProfileEntry> entries;
};
std::vector<ProfileSection> listProfileSections(std::string_view content);

}  // namespace braxcfg::platform
