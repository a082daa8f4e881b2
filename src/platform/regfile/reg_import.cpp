#include "platform/regfile/reg_import.h"

#include "platform/store.h"
#include "platform/store_key.h"

namespace braxcfg::platform::regfile {
namespace {

class RegImporter {
public:
    explicit RegImporter(StoreBackend& store) : store_(store), current_(store) {}
    std::optional<RegError> apply(const RegOp& op);

private:
    static RegError refused(const RegOp& op, const std::string& what, RegResult result) {
        // Busy or full is the store's state, not the line's fault.
        if (const StoreFailure failure = storeFailureOf(result);
            failure == StoreFailure::Busy || failure == StoreFailure::DiskFull)
            return RegError{0, storeFailureMessage(failure)};
        return RegError{op.line, "the store refused to " + what + ": " + storeResultText(result)};
    }

    StoreBackend& store_;
    StoreKey current_;  // the key of the last [key] line
};

std::optional<RegError> RegImporter::apply(const RegOp& op) {
    const std::string& name = op.name;
    switch (op.kind) {
        case RegOpKind::CreateKey:
            if (const RegResult r = current_.create(kLocalMachine, op.keyPath, kKeyAllAccess); r != kErrorSuccess)
                return refused(op, "create " + fullKeyPath(op.keyPath), r);
            return std::nullopt;
        case RegOpKind::DeleteKey:
            current_.reset();
            if (const RegResult r = deleteKeyTree(store_, kLocalMachine, op.keyPath);
                r != kErrorSuccess && r != kErrorFileNotFound)
                return refused(op, "delete " + fullKeyPath(op.keyPath), r);
            return std::nullopt;
        case RegOpKind::SetValue: {
            // The store adds a terminator to a string when the byte past
            // the data is NUL; a byte that is not keeps the data exactly as
            // the file gave it (text without a terminator included).
            const std::string sentinelled = op.data + '\x01';
            if (const RegResult r =
                    current_.setBytes(name, op.type, std::string_view(sentinelled).substr(0, op.data.size()));
                r != kErrorSuccess)
                return refused(op, "set the value \"" + name + "\"", r);
            return std::nullopt;
        }
        case RegOpKind::DeleteValue:
            if (const RegResult r = current_.deleteValue(name);
                r != kErrorSuccess && r != kErrorFileNotFound)
                return refused(op, "delete the value \"" + name + "\"", r);
            return std::nullopt;
    }
    return std::nullopt;
}

// Levels below HKEY_LOCAL_MACHINE; runs of "\\" count as one separator.
std::size_t depthOf(const std::string& keyPath) {
    std::size_t depth = 0;
    bool inName = false;
    for (const char c : keyPath) {
        if (c != '\\' && !inName) ++depth;
        inName = c != '\\';
    }
    return depth;
}

// A key deeper than the registry allows is refused before anything is
// written, so the file is refused whole.
std::optional<RegError> tooDeep(const std::vector<RegOp>& ops) {
    for (const RegOp& op : ops) {
        if (op.kind != RegOpKind::CreateKey && op.kind != RegOpKind::DeleteKey) continue;
        if (const std::size_t depth = depthOf(op.keyPath); depth > kMaxKeyDepth)
            return RegError{op.line, "the key is " + std::to_string(depth) + " levels deep; the store allows at most " +
                                         std::to_string(kMaxKeyDepth)};
    }
    return std::nullopt;
}

}  // namespace

std::optional<RegError> applyRegOps(StoreBackend& store, const std::vector<RegOp>& ops) {
    if (auto error = tooDeep(ops)) return error;
    StoreTransaction transaction(store);
    if (!transaction.active()) return RegError{0, transaction.failureMessage()};
    {
        RegImporter importer(store);
        for (const RegOp& op : ops)
            if (auto error = importer.apply(op)) return error;
    }
    if (!transaction.commit()) return RegError{0, transaction.failureMessage()};
    return std::nullopt;
}

std::optional<RegError> importRegFile(StoreBackend& store, std::string_view bytes) {
    const RegParseResult parsed = parseRegFile(bytes);
    if (parsed.error) return parsed.error;
    return applyRegOps(store, parsed.ops);
}

}  // namespace braxcfg::platform::regfile
