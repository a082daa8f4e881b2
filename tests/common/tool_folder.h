#pragma once
// A gtest fixture for tests that run the tool on a store of their own: an
// empty folder per test (named after the test and this process) holding
// the store and whatever files the test writes, removed at the end.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "temp_store.h"
#include "file_bytes.h"
#include "tool_run.h"

namespace braxcfg::test {

class ToolFolder : public ::testing::Test {
protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir_ = testOutputDir(std::string("tool_folder/") + info->test_suite_name() + "." + info->name() + "-" +
                             std::to_string(::getpid()));
        std::filesystem::remove_all(dir_);
        std::filesystem::create_directories(dir_);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::string path(const std::string& name) const { return dir_ + "/" + name; }
    std::string store() const { return path("store.db"); }
    // Writes `bytes` as the file `name` in the folder; its path.
    std::string write(const std::string& name, const std::string& bytes) const { return writeFile(path(name), bytes); }

    ToolRun tool(const std::vector<std::string>& args) const { return runToolOn(store(), args); }
    // The exit code, with stdout then stderr in `output`.
    int run(const std::vector<std::string>& args, std::string* output = nullptr) const {
        const ToolRun result = tool(args);
        if (output) *output = result.out + result.err;
        return result.exitCode;
    }

    std::string dir_;
};

}  // namespace braxcfg::test
