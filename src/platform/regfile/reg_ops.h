#pragma once
// What a .reg text asks of the store, in file order: the parser's output
// and the importer's input.
#include <optional>
#include <string>
#include <vector>

#include "platform/reg_types.h"

namespace braxcfg::platform::regfile {

// The header line decides how hex(1), hex(2) and hex(7) bytes are read:
// narrow text after REGEDIT4, UTF-16LE after the version 5.00 header,
// whatever encoding the file itself is in.
enum class RegVersion { Regedit4, Version5 };

enum class RegOpKind {
    CreateKey,    // [path]: the key and its missing parents
    DeleteKey,    // [-path]: the key with its whole subtree; a missing key is fine
    SetValue,     // "name"=data or @=data, below the last [path]
    DeleteValue,  // "name"=-, below the last [path]; a missing value is fine
};

struct RegOp {
    RegOpKind kind = RegOpKind::CreateKey;
    int line = 0;         // line of the file the operation starts on, from 1
    std::string keyPath;  // below HKEY_LOCAL_MACHINE, one "\" between names; empty is the root
    std::string name;     // value name; empty is the default value
    RegType type = kRegNone;
    std::string data;     // value bytes as the store keeps them (REG_SZ with its NUL)
};

// The first thing wrong with a file. line is 0 for faults that belong to
// no line (the store refused a transaction).
struct RegError {
    int line = 0;
    std::string message;
};

// "line 7: ..." or the bare message when there is no line.
std::string describe(const RegError& error);

struct RegParseResult {
    RegVersion version = RegVersion::Version5;
    std::vector<RegOp> ops;         // empty when error is set
    std::optional<RegError> error;
};

}  // namespace braxcfg::platform::regfile
