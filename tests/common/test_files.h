#pragma once
// Whole files as bytes, for tests that write an input and compare an output.
#include <fstream>
#include <sstream>
#include <string>

namespace braxcfg::test {

// The file's bytes; empty when it cannot be read.
inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

// Writes `bytes` as the whole file and returns its path.
inline std::string writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

// Every `from` in `text` replaced by `to`.
inline void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

}  // namespace braxcfg::test
