#pragma once
// Store content as .reg text with key paths relative to the product key:
// "[]" is the key itself (or the dumped one), then "[VISADev]" and so on,
// no blank lines.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/store.h"
#include "store_builder.h"

namespace braxcfg::test {

// The subtree below the product key's `sub`; "<missing>" when it does not exist.
inline std::string treeText(const std::string& sub) {
    const std::string root = "HKEY_LOCAL_MACHINE\\" + underProduct(sub);
    const auto file = platform::regfile::exportRegFile(platform::currentStore(), root,
                                                       platform::regfile::RegTextEncoding::Utf8);
    if (file.error) return "<missing>";
    std::istringstream in(file.bytes.substr(file.bytes.find('\n')));
    std::string text;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("[" + root))
            line = "[" + line.substr(root.size() + (line[root.size() + 1] == '\\' ? 2 : 1));
        if (!line.empty()) text += line + "\n";
    }
    return text;
}

// Merges text of that form into the store; "[-path]" deletes.
inline void putTree(const std::string& text) {
    std::string file = "REGEDIT4\n";
    std::istringstream in(text);
    for (std::string line; std::getline(in, line); file += line + "\n") {
        const std::size_t start = line.starts_with("[-") ? 2 : 1;
        if (line.starts_with("["))
            line = line.substr(0, start) + "HKEY_LOCAL_MACHINE\\" +
                   underProduct(line.substr(start, line.size() - start - 1)) + "]";
    }
    ASSERT_FALSE(platform::regfile::importRegFile(platform::currentStore(), file).has_value()) << file;
}

}  // namespace braxcfg::test
