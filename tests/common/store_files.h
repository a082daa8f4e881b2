#pragma once
// A store is more than its file: SQLite keeps side files next to it while it
// is open (the write-ahead log, the shared-memory index, a rollback journal).
// Header only, so the benchmarks use it without the test framework.
#include <filesystem>
#include <string>
#include <utility>

namespace braxcfg::test {

// Appended to the store's path: the store file itself, then its side files.
inline constexpr const char* kStoreFileSuffixes[] = {"", "-wal", "-shm", "-journal"};

// Removes the store file and every side file; missing ones are no error.
inline void removeStoreFiles(const std::string& path) {
    std::error_code ignored;
    for (const char* suffix : kStoreFileSuffixes) std::filesystem::remove(path + suffix, ignored);
}

// The files of a store at `path`, owned for a scope: whatever an earlier run
// left there is removed first, and everything is removed again at the end.
// Close the store before this goes.
class ScratchStoreFiles {
public:
    explicit ScratchStoreFiles(std::string path) : path_(std::move(path)) { removeStoreFiles(path_); }
    ~ScratchStoreFiles() { removeStoreFiles(path_); }
    ScratchStoreFiles(const ScratchStoreFiles&) = delete;
    ScratchStoreFiles& operator=(const ScratchStoreFiles&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

}  // namespace braxcfg::test
