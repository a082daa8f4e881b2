#pragma once
// How an attempt to open the store ended, and how it was asked to open:
// shared by the process's store and the backends' own openers.
#include <string>

namespace braxcfg::platform {

enum class StoreOpenState {
    Open,        // usable (possibly read-only, see writable)
    Missing,     // the file does not exist and could not be created
    Corrupt,     // not a store file, or damaged; never overwritten
    Unreadable,  // permissions or I/O
};

// How a store is opened. Change creates a missing file and opens it
// writable when this user may write it; ReadOnly needs the file to exist
// and never writes it, so a command that only reads leaves no trace.
enum class StoreAccess { Change, ReadOnly };

struct StoreStatus {
    StoreOpenState state = StoreOpenState::Missing;
    bool writable = false;
    std::string path;
    std::string error;  // what went wrong, for the tool to print
};

}  // namespace braxcfg::platform
