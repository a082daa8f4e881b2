#pragma once
// What the Windows store has instead of transactions. The registry makes
// each call atomic but cannot group calls, so while a StoreTransaction is
// held every write first records in the registry how to undo it:
//   - the first write to a key's values in a scope records the key's values
//     as they were, in order (undone by clearing the key and writing them
//     back, which also recreates a key deleted since);
//   - each key a create makes records "delete it again".
// Rolling back replays the records newest first. The journal of a process
// that died before it committed or rolled back is replayed by the next
// process that opens the store, so a rewrite ends as it was before or as it
// is after, never half-way, whatever kills the writer. A crash of the whole
// machine before the registry's lazy flush can lose either.
// Other processes see the changes as they are made (no isolation).
#ifdef _WIN32
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/reg_types.h"

struct HKEY__;

namespace braxcfg::platform {

class UndoJournal {
public:
    // The journal of this process below `root`\SOFTWARE\braxcfg\Journal.
    explicit UndoJournal(HKEY__* root);

    // Scopes nest; each rollback undoes only its own scope's writes.
    RegResult beginScope();
    RegResult commitScope();
    void rollbackScope();
    bool active() const { return !scopes_.empty(); }

    // Called before the write, with the key's path below root.
    RegResult beforeValueChange(const std::string& keyPath);
    RegResult beforeKeyDelete(const std::string& keyPath);
    RegResult beforeKeyCreate(const std::string& keyPath);

    // Replays the journals of processes that are gone.
    static void recoverAbandoned(HKEY__* root);

private:
    struct Scope {
        std::uint32_t firstEntry = 0;
        std::set<std::string> savedKeys;  // upper-cased paths already recorded
    };
    RegResult record(const std::string& entry);

    HKEY__* root_;
    std::string journalPath_;
    std::uint32_t nextEntry_ = 0;
    std::vector<Scope> scopes_;
};

}  // namespace braxcfg::platform
#endif
