#pragma once
// A fresh store file below the temporary folder, opened as the process's
// store for one benchmark and removed afterwards with its side files.
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/store.h"
#include "store_files.h"

namespace braxcfg::bench {

class BenchStore {
public:
    explicit BenchStore(const std::string& name = "bench")
        : files_((std::filesystem::temp_directory_path() /
                  ("braxcfg-" + name + "-" + std::to_string(::getpid()) + ".db"))
                     .string()) {
        platform::openStore(files_.path());
    }
    ~BenchStore() { platform::closeStore(); }
    BenchStore(const BenchStore&) = delete;
    BenchStore& operator=(const BenchStore&) = delete;
    const std::string& path() const { return files_.path(); }

private:
    test::ScratchStoreFiles files_;
};

}  // namespace braxcfg::bench
