// import FILE: merges a .reg file into the store, all or nothing.
// export [--key PATH] [--utf8] [FILE]: writes the store as .reg text.
#include <iostream>

#include "command.h"
#include "reg_files.h"
#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/store.h"
#include "tool_text.h"

namespace braxcfg::tool {
namespace {

using platform::regfile::RegTextEncoding;

int runImport(const ParsedArgs& split) {
    std::string error;
    if (split.operands.size() != 1) return fail("import needs exactly one FILE");
    const std::string& path = split.operands[0];
    std::string bytes;
    if (!readWholeFile(path, bytes, error)) return fail(error);
    if (const auto problem = platform::regfile::importRegFile(platform::currentStore(), bytes))
        return fail(path + ": " + forStderr(platform::regfile::describe(*problem)) + "; nothing was imported");
    return 0;
}

int runExport(const ParsedArgs& split) {
    std::string error;
    if (split.operands.size() > 1) return fail("export takes at most one FILE");
    const RegTextEncoding encoding = hasOption(split, "--utf8") ? RegTextEncoding::Utf8 : RegTextEncoding::Utf16;
    const auto result = platform::regfile::exportRegFile(platform::currentStore(), optionValue(split, "--key"), encoding);
    if (result.error) return fail(forStderr(*result.error));
    if (split.operands.empty()) {
        std::cout.write(result.bytes.data(), static_cast<std::streamsize>(result.bytes.size()));
        std::cout.flush();
        return std::cout ? 0 : fail("cannot write to standard output");
    }
    if (!writeWholeFile(split.operands[0], result.bytes, error)) return fail(error);
    return 0;
}

const CommandRegistration kImport(
    {"import", "merge a .reg file into the store",
     "usage: braxcfg import FILE\n"
     "Merges FILE into the store: keys and values are created or replaced, [-key] deletes a key\n"
     "with everything below it, \"name\"=- deletes a value. FILE is REGEDIT4 (ANSI) or\n"
     "Windows Registry Editor Version 5.00 (UTF-16LE with byte order mark, or UTF-8).\n"
     "Only HKEY_LOCAL_MACHINE is stored. The first malformed line is reported with its\n"
     "number and nothing is imported.\n",
     StoreUse::Write, runImport, {}, true});

const CommandRegistration kExport(
    {"export", "write the store as a .reg file",
     "usage: braxcfg export [--key PATH] [--utf8] [FILE]\n"
     "Writes the store, or the key PATH (a full path such as\n"
     "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane) with everything below it, as .reg text:\n"
     "UTF-16LE with byte order mark and CRLF line ends, as Windows writes it, or with\n"
     "--utf8 UTF-8 without byte order mark and LF line ends. Standard output when no FILE.\n",
     StoreUse::ReadOnly, runExport,
     {{"--key", "PATH", "only the key PATH with everything below it"},
      {"--utf8", nullptr, "UTF-8 without byte order mark and LF line ends"}},
     true});

}  // namespace
}  // namespace braxcfg::tool
