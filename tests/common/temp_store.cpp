#include "temp_store.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>

#include "platform/store.h"
#include "store_files.h"

#ifdef _WIN32
#include <process.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace braxcfg::test {

std::string testOutputDir(const std::string& sub) {
    const auto dir = std::filesystem::path(BRAXCFG_TEST_OUTPUT) / sub;
    std::filesystem::create_directories(dir);
    return dir.generic_string();  // '/' on Windows too: the path goes into .reg text unescaped
}

namespace {

// Named after the running test, unique within the run.
std::string uniqueName() {
    static std::atomic<int> counter{0};
    std::string name = "store";
    if (const auto* info = ::testing::UnitTest::GetInstance()->current_test_info()) {
        name = std::string(info->test_suite_name()) + "." + info->name();
        for (char& c : name)
            if (c == '/') c = '_';
    }
    return name + "-" + std::to_string(getpid()) + "-" + std::to_string(counter++);
}

#ifdef _WIN32
constexpr const char* kScratchParent = "Software\\braxcfg-tests";

std::string freshStorePath() { return std::string("HKEY_CURRENT_USER\\") + kScratchParent + "\\" + uniqueName(); }

}  // namespace

void removeTestStore(const std::string& path) {
    const std::string sub = path.substr(std::string("HKEY_CURRENT_USER\\").size());
    RegDeleteTreeA(HKEY_CURRENT_USER, sub.c_str());
    RegDeleteKeyA(HKEY_CURRENT_USER, sub.c_str());
    RegDeleteKeyA(HKEY_CURRENT_USER, kScratchParent);  // once no other test's key is left
}
#else
std::string freshStorePath() { return testOutputDir("stores") + "/" + uniqueName() + ".db"; }

}  // namespace

void removeTestStore(const std::string& path) { removeStoreFiles(path); }
#endif

TempStore::TempStore() : path_(freshStorePath()) {
    removeTestStore(path_);
    reopen();
}

TempStore::~TempStore() {
    platform::closeStore();
    removeTestStore(path_);
}

void TempStore::reopen() const {
    const auto status = platform::openStore(path());
    ASSERT_EQ(status.state, platform::StoreOpenState::Open) << status.error;
}

}  // namespace braxcfg::test
