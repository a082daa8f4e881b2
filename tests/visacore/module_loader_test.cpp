// Finding modules by name, only in trusted directories.
#include "visacore/module_loader.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

#include "platform/product_settings.h"
#include "platform/registry.h"
#include "temp_store.h"

namespace braxcfg::visa {
namespace {

namespace fs = std::filesystem;

using ModuleIdFn = int();

// Runs a test in a scratch working directory, with the module path and
// store it sets up, and puts everything back afterwards.
class ModuleLoaderTest : public ::testing::Test {
protected:
    void SetUp() override {
        previousDir_ = fs::current_path();
        scratch_ = fs::path(test::testOutputDir("modules")) /
                   ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(scratch_);
        fs::create_directories(scratch_);
        unsetenv("BRAXCFG_MODULE_PATH");
    }
    void TearDown() override {
        fs::current_path(previousDir_);
        unsetenv("BRAXCFG_MODULE_PATH");
        fs::remove_all(scratch_);
    }
    // Copies the fake modules of `folder` into `dir`.
    static void copyModules(const char* folder, const fs::path& dir) {
        fs::create_directories(dir);
        for (const auto& entry : fs::directory_iterator(fs::path(FAKE_MODULES_DIR) / folder))
            fs::copy_file(entry.path(), dir / entry.path().filename(), fs::copy_options::overwrite_existing);
    }
    static int loadedModuleId(ViStatus* status = nullptr) {
        void* slot = reinterpret_cast<void*>(1);
        const ViStatus result = osLoadEntryPoint("AUTOCF", "AUTOCF_moduleId", &slot, kLoadIfNeeded);
        if (status != nullptr) *status = result;
        return slot != nullptr ? reinterpret_cast<ModuleIdFn*>(slot)() : 0;
    }

    test::TempStore store_;  // "BaseDir" is "." unless a test writes it
    fs::path previousDir_;
    fs::path scratch_;
};

TEST_F(ModuleLoaderTest, NeverLoadsFromTheWorkingDirectory) {
    copyModules("both", scratch_);
    fs::current_path(scratch_);
    // Empty and relative entries would mean the working directory.
    for (const char* path : {"", ".", ":", "./:modules", "::."}) {
        SCOPED_TRACE(path);
        setenv("BRAXCFG_MODULE_PATH", path, 1);
        ViStatus status = VI_SUCCESS;
        EXPECT_EQ(loadedModuleId(&status), 0);
        EXPECT_EQ(status, VI_ERROR_LIBRARY_NFOUND);
        for (const std::string& dir : moduleSearchDirectories()) EXPECT_TRUE(fs::path(dir).is_absolute()) << dir;
    }
}

TEST_F(ModuleLoaderTest, PrefersTheLibFileNameInEachDirectory) {
    EXPECT_EQ(moduleFileNames("AUTOCF"), (std::vector<std::string>{"libautocf.so", "AUTOCF.so"}));
    copyModules("both", scratch_ / "both");
    copyModules("upper", scratch_ / "upper");
    setenv("BRAXCFG_MODULE_PATH", (scratch_ / "both").c_str(), 1);
    EXPECT_EQ(loadedModuleId(), 1);
    setenv("BRAXCFG_MODULE_PATH", ("relative:" + (scratch_ / "upper").string()).c_str(), 1);
    EXPECT_EQ(loadedModuleId(), 2);
}

TEST_F(ModuleLoaderTest, FindsModulesBelowAnAbsoluteBaseDir) {
    copyModules("upper", scratch_ / "base");
    platform::Registry product(platform::kLocalMachine, platform::productKey(), platform::kRegOpenOrCreate);
    product.setString("BaseDir", (scratch_ / "base").string());
    store_.reopen();
    EXPECT_EQ(loadedModuleId(), 2);
}

TEST_F(ModuleLoaderTest, MissingPiecesLeaveTheSlotEmpty) {
    copyModules("upper", scratch_ / "dir");
    setenv("BRAXCFG_MODULE_PATH", (scratch_ / "dir").c_str(), 1);
    struct Case {
        const char* module;
        const char* name;
        int flag;
        ViStatus expected;
    };
    const Case cases[] = {
        {"AUTOCF", "AUTOCF_moduleId", kLoadIfNeeded, VI_SUCCESS},
        {"AUTOCF", "AUTOCF_autoConfigReset", kLoadIfNeeded, VI_ERROR_NIMPL_OPER},
        {"NOSUCH", "AUTOCF_moduleId", kLoadIfNeeded, VI_ERROR_LIBRARY_NFOUND},
        {"../dir/AUTOCF", "AUTOCF_moduleId", kLoadIfNeeded, VI_ERROR_LIBRARY_NFOUND},
        {"", "AUTOCF_moduleId", kLoadIfNeeded, VI_ERROR_LIBRARY_NFOUND},
        {nullptr, "AUTOCF_moduleId", kLoadIfNeeded, VI_ERROR_LIBRARY_NFOUND},
        {"AUTOCF", nullptr, kLoadIfNeeded, VI_ERROR_LIBRARY_NFOUND},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.module != nullptr ? c.module : "(null)");
        void* slot = reinterpret_cast<void*>(1);
        EXPECT_EQ(osLoadEntryPoint(c.module, c.name, &slot, c.flag), c.expected);
        EXPECT_EQ(slot != nullptr, c.expected == VI_SUCCESS);
    }
    EXPECT_EQ(osLoadEntryPoint("AUTOCF", "AUTOCF_moduleId", nullptr, kLoadIfNeeded), VI_ERROR_INV_PARAMETER);
}

TEST_F(ModuleLoaderTest, LoadedOnlyFlagNeverLoads) {
    copyModules("both", scratch_ / "fresh");
    setenv("BRAXCFG_MODULE_PATH", (scratch_ / "fresh").c_str(), 1);
    void* slot = reinterpret_cast<void*>(1);
    EXPECT_EQ(osLoadEntryPoint("AUTOCF", "AUTOCF_moduleId", &slot, kLoadedOnly), VI_ERROR_LIBRARY_NFOUND);
    EXPECT_EQ(slot, nullptr);
    ASSERT_EQ(osLoadEntryPoint("AUTOCF", "AUTOCF_moduleId", &slot, kLoadIfNeeded), VI_SUCCESS);
    void* again = nullptr;
    EXPECT_EQ(osLoadEntryPoint("AUTOCF", "AUTOCF_moduleId", &again, kLoadedOnly), VI_SUCCESS);
    EXPECT_EQ(again, slot);
}

}  // namespace
}  // namespace braxcfg::visa
