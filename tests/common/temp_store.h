#pragma once
// A fresh store for one test, opened as the process's store: a file, or on
// Windows a scratch key below HKEY_CURRENT_USER standing in for
// HKEY_LOCAL_MACHINE. Whatever an earlier run left there is removed first,
// and everything is removed again at the end.
#include <string>

namespace braxcfg::test {

class TempStore {
public:
    TempStore();
    ~TempStore();
    TempStore(const TempStore&) = delete;
    TempStore& operator=(const TempStore&) = delete;
    // The store's location, as openStore takes it.
    const std::string& path() const { return path_; }
    // Opens the same store again as the process's store (another "process
    // start": caches of product settings are read anew).
    void reopen() const;

private:
    std::string path_;
};

// Removes the store at `path` (a file and its side files, or on Windows a
// key below HKEY_CURRENT_USER with everything in it); a missing one is fine.
void removeTestStore(const std::string& path);

// A folder below the build tree for test output (screenshots, stores).
std::string testOutputDir(const std::string& sub);

}  // namespace braxcfg::test
