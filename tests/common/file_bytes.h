#pragma once
// Whole files as bytes: what a test hands the tool or the store to read, and
// what they wrote, compared byte for byte.
#include <fstream>
#include <iterator>
#include <string>

namespace braxcfg::test {

// The file's bytes; empty when it cannot be read.
inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Replaces the file's content with `bytes`, no newline conversion; the path.
inline std::string writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
    return path;
}

// Every `from` in `text` replaced by `to`.
inline void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

}  // namespace braxcfg::test
