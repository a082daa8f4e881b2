// Finding modules by name, only in trusted directories.
#include "visacore/module_loader.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

#include "platform/product_settings.h"
#include "platform/registry.h"
#include "visacore/system_visa.h"
#include "scoped_env.h"
#include "temp_store.h"

namespace braxcfg::visa {
namespace {

namespace fs = std::filesystem;

// Each test works in a scratch folder of its own (a module, once loaded,
// stays loaded under its path) and puts the working directory back.
class ModuleLoaderTest : public ::testing::Test {
protected:
    void SetUp() override { fs::remove_all(scratch_); }
    void TearDown() override {
        fs::current_path(previousDir_);
        fs::remove_all(scratch_);
    }
    // A copy of the fake modules built into `folder` ("both": libautocf.so
    // saying 1 and AUTOCF.so saying 2; "upper": AUTOCF.so only), in `dir`.
    fs::path modules(const char* folder, const std::string& dir) const {
        fs::create_directories(scratch_ / dir);
        for (const auto& entry : fs::directory_iterator(fs::path(FAKE_MODULES_DIR) / folder))
            fs::copy_file(entry.path(), scratch_ / dir / entry.path().filename());
        return scratch_ / dir;
    }
    static void searchPath(const std::string& path) { setenv("BRAXCFG_MODULE_PATH", path.c_str(), 1); }
    // The id the loaded module reports, 0 when the slot stayed empty.
    static int loadedModuleId(int flag = kLoadIfNeeded) {
        void* slot = reinterpret_cast<void*>(1);
        osLoadEntryPoint("AUTOCF", "AUTOCF_moduleId", &slot, flag);
        return slot != nullptr ? reinterpret_cast<int (*)()>(slot)() : 0;
    }

    const test::ScopedEnv noSearchPath_{"BRAXCFG_MODULE_PATH", nullptr};
    test::TempStore store_;  // "BaseDir" is "." unless a test writes it
    const fs::path previousDir_ = fs::current_path();
    const fs::path scratch_ = fs::path(test::testOutputDir("modules")) /
                              ::testing::UnitTest::GetInstance()->current_test_info()->name();
};

// Empty and relative entries would mean the working directory.
TEST_F(ModuleLoaderTest, NeverLoadsFromTheWorkingDirectory) {
    fs::current_path(modules("both", "cwd"));
    for (const char* path : {"", ".", ":", "./:modules", "::."}) {
        searchPath(path);
        EXPECT_EQ(loadedModuleId(), 0) << path;
        for (const std::string& dir : moduleSearchDirectories()) EXPECT_TRUE(fs::path(dir).is_absolute()) << dir;
    }
}

// The lib name first; a module already loaded is used with kLoadedOnly,
// which never loads one itself.
TEST_F(ModuleLoaderTest, FindsModulesInTrustedDirectoriesPreferringTheLibName) {
    searchPath(modules("both", "both").string());
    EXPECT_EQ(loadedModuleId(kLoadedOnly), 0);
    EXPECT_EQ(loadedModuleId(), 1);
    EXPECT_EQ(loadedModuleId(kLoadedOnly), 1);
    searchPath("relative:" + modules("upper", "upper").string());
    EXPECT_EQ(loadedModuleId(), 2);
    unsetenv("BRAXCFG_MODULE_PATH");
    platform::Registry(platform::kLocalMachine, platform::productKey(), platform::kRegOpenOrCreate)
        .setString("BaseDir", modules("upper", "base").string());
    store_.reopen();
    EXPECT_EQ(loadedModuleId(), 2);
}

// As a dynamic loader in secure mode: a module that anybody but root and
// this user could have placed or changed is passed over, and so is the
// system VISA library.
TEST_F(ModuleLoaderTest, PassesOverFilesOthersCouldHaveChanged) {
    // lowerFile: libautocf.so (says 1); AUTOCF.so (says 2) stays 0755. lowerOwner -1: this user.
    const struct { const char* label; fs::perms folder, lowerFile; uid_t lowerOwner; int loaded; } cases[] = {
        {"sound", fs::perms(0755), fs::perms(0755), uid_t(-1), 1},
        {"file writable by group", fs::perms(0755), fs::perms(0775), uid_t(-1), 2},
        {"folder writable by others", fs::perms(0757), fs::perms(0755), uid_t(-1), 0},
        {"folder writable by others, sticky", fs::perms(01777), fs::perms(0755), uid_t(-1), 0},
        {"file of another user", fs::perms(0755), fs::perms(0755), uid_t(4242), 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        if (c.lowerOwner != uid_t(-1) && ::geteuid() != 0) continue;  // only root gives files away
        const fs::path dir = modules("both", c.label);
        fs::permissions(dir / "libautocf.so", c.lowerFile);
        ASSERT_TRUE(c.lowerOwner == uid_t(-1) || ::chown((dir / "libautocf.so").c_str(), c.lowerOwner, 0) == 0);
        fs::permissions(dir, c.folder);
        searchPath(dir.string());
        EXPECT_EQ(loadedModuleId(), c.loaded);
        if (c.loaded != 1) {
            std::string error;
            EXPECT_EQ(loadSystemVisa((dir / (c.loaded == 2 ? "libautocf.so" : "AUTOCF.so")).string(), error), nullptr);
            EXPECT_NE(error.find("not loading"), std::string::npos) << error;
        }
        fs::permissions(dir, fs::perms(0755));
    }
}

TEST_F(ModuleLoaderTest, MissingPiecesLeaveTheSlotEmpty) {
    searchPath(modules("upper", "dir").string());
    const struct { const char* module; const char* name; ViStatus expected; } cases[] = {
        {"AUTOCF", "AUTOCF_autoConfigReset", VI_ERROR_NIMPL_OPER},
        {"NOSUCH", "AUTOCF_moduleId", VI_ERROR_LIBRARY_NFOUND},
        {"../dir/AUTOCF", "AUTOCF_moduleId", VI_ERROR_LIBRARY_NFOUND},
        {nullptr, "AUTOCF_moduleId", VI_ERROR_LIBRARY_NFOUND},
    };
    for (const auto& c : cases) {
        void* slot = reinterpret_cast<void*>(1);
        EXPECT_EQ(osLoadEntryPoint(c.module, c.name, &slot, kLoadIfNeeded), c.expected) << (c.module ? c.module : "-");
        EXPECT_EQ(slot, nullptr);
    }
    EXPECT_EQ(osLoadEntryPoint("AUTOCF", "AUTOCF_moduleId", nullptr, kLoadIfNeeded), VI_ERROR_INV_PARAMETER);
}

}  // namespace
}  // namespace braxcfg::visa
