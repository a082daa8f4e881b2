#pragma once
// A fresh store file below the temporary folder, opened as the process's
// store for one benchmark and removed afterwards.
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/store.h"

namespace braxcfg::bench {

class BenchStore {
public:
    explicit BenchStore(const std::string& name = "bench") {
        path_ = (std::filesystem::temp_directory_path() /
                 ("braxcfg-" + name + "-" + std::to_string(::getpid()) + ".db"))
                    .string();
        removeFiles();
        platform::openStore(path_);
    }
    ~BenchStore() {
        platform::closeStore();
        removeFiles();
    }
    BenchStore(const BenchStore&) = delete;
    BenchStore& operator=(const BenchStore&) = delete;
    const std::string& path() const { return path_; }

private:
    void removeFiles() const {
        for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path_ + suffix);
    }
    std::string path_;
};

}  // namespace braxcfg::bench
