#include "platform/profile_reader.h"

#include <fstream>
#include <optional>
#include <sstream>

namespace braxcfg::platform {
namespace {

bool isBlank(char c) {
    // 0x1A is the old end-of-file mark that editors of that platform leave.
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f' || c == '\x1a';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (asciiLower(a[i]) != asciiLower(b[i])) return false;
    return true;
}

std::string_view withoutQuotes(std::string_view value) {
    if (value.size() > 1 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

std::string fitted(std::string_view text, std::size_t maxChars) {
    if (maxChars == 0) return {};
    if (maxChars != kProfileUnlimited && text.size() > maxChars - 1) text = text.substr(0, maxChars - 1);
    return std::string(text);
}

// The header's name when `line` (already trimmed) is a section header. The
// last "]" closes it; a "[" without one is not a header.
std::optional<std::string_view> sectionName(std::string_view line) {
    if (line.empty() || line.front() != '[') return std::nullopt;
    const std::size_t close = line.rfind(']');
    if (close == std::string_view::npos || close == 0) return std::nullopt;
    return trimmed(line.substr(1, close - 1));
}

// Calls `visit(line, number)` for each trimmed line that is not blank or a
// comment.
template <typename Visit>
void forEachLine(std::string_view content, Visit visit) {
    std::size_t start = 0;
    if (content.substr(0, 3) == "\xEF\xBB\xBF") start = 3;  // a UTF-8 mark some editors write
    for (int number = 1; start < content.size(); ++number) {
        std::size_t end = content.find_first_of("\r\n", start);
        if (end == std::string_view::npos) end = content.size();
        const std::string_view line = trimmed(content.substr(start, end - start));
        // CR, LF and CR LF each end one line.
        start = end + (content.substr(end, 2) == "\r\n" ? 2 : 1);
        if (line.empty() || line.front() == ';') continue;
        if (!visit(line, number)) return;
    }
}

// Looks `key` up in the first section named `section`: the value when the
// key is there with "=", nothing when it is missing or has no "=".
std::optional<std::string_view> findValue(std::string_view content, std::string_view section,
                                          std::string_view key) {
    bool inSection = false;
    std::optional<std::string_view> found;
    forEachLine(content, [&](std::string_view line, int) {
        if (const auto name = sectionName(line)) {
            // Only the first section of a name is read.
            if (inSection) return false;
            inSection = equalsIgnoringCase(*name, section);
            return true;
        }
        if (!inSection) return true;
        const std::size_t equals = line.find('=');
        if (!equalsIgnoringCase(trimmed(line.substr(0, equals)), key)) return true;
        if (equals != std::string_view::npos) found = trimmed(line.substr(equals + 1));
        return false;
    });
    return found;
}

}  // namespace

std::vector<ProfileSection> listProfileSections(std::string_view content) {
    std::vector<ProfileSection> sections(1);
    forEachLine(content, [&](std::string_view line, int number) {
        if (const auto name = sectionName(line)) {
            sections.push_back({std::string(*name), number, {}});
            return true;
        }
        const std::size_t equals = line.find('=');
        ProfileEntry entry{std::string(trimmed(line.substr(0, equals))), {}, number, equals != std::string_view::npos};
        if (entry.hasEquals) entry.value = withoutQuotes(trimmed(line.substr(equals + 1)));
        sections.back().entries.push_back(std::move(entry));
        return true;
    });
    if (sections.front().entries.empty()) sections.erase(sections.begin());
    return sections;
}

std::string lookupProfileString(std::string_view content, std::string_view section, std::string_view key,
                                std::string_view defaultValue, std::size_t maxChars) {
    if (const auto value = findValue(content, section, key)) return fitted(withoutQuotes(*value), maxChars);
    std::string_view fallback = defaultValue;
    while (!fallback.empty() && fallback.back() == ' ') fallback.remove_suffix(1);
    return fitted(fallback, maxChars);
}

std::string readProfileString(const std::string& path, std::string_view section, std::string_view key,
                              std::string_view defaultValue, std::size_t maxChars) {
    // A missing file, a folder or an unreadable file all read as empty text.
    std::ostringstream content;
    if (std::ifstream file(path, std::ios::binary); file) content << file.rdbuf();
    return lookupProfileString(content.str(), section, key, defaultValue, maxChars);
}

}  // namespace braxcfg::platform
