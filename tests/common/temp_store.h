#pragma once
// A fresh store file for one test, opened as the process's store.
#include <string>

#include "store_files.h"

namespace braxcfg::test {

class TempStore {
public:
    TempStore();
    ~TempStore();
    TempStore(const TempStore&) = delete;
    TempStore& operator=(const TempStore&) = delete;
    const std::string& path() const { return files_.path(); }
    // Opens the same file again as the process's store (another "process
    // start": caches of product settings are read anew).
    void reopen() const;

private:
    ScratchStoreFiles files_;
};

// A folder below the build tree for test output (screenshots, stores).
std::string testOutputDir(const std::string& sub);

}  // namespace braxcfg::test
