#include "temp_store.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>

#include "platform/store.h"

namespace braxcfg::test {

std::string testOutputDir(const std::string& sub) {
    const auto dir = std::filesystem::path(BRAXCFG_TEST_OUTPUT) / sub;
    std::filesystem::create_directories(dir);
    return dir.string();
}

namespace {

// Named after the running test, unique within the run.
std::string freshStorePath() {
    static std::atomic<int> counter{0};
    std::string name = "store";
    if (const auto* info = ::testing::UnitTest::GetInstance()->current_test_info()) {
        name = std::string(info->test_suite_name()) + "." + info->name();
        for (char& c : name)
            if (c == '/') c = '_';
    }
    return testOutputDir("stores") + "/" + name + "-" + std::to_string(getpid()) + "-" + std::to_string(counter++) +
           ".db";
}

}  // namespace

TempStore::TempStore() : files_(freshStorePath()) { reopen(); }

TempStore::~TempStore() { platform::closeStore(); }

void TempStore::reopen() const {
    const auto status = platform::openStore(path());
    ASSERT_EQ(status.state, platform::StoreOpenState::Open) << status.error;
}

}  // namespace braxcfg::test
