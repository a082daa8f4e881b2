// The machine-wide store is root's alone, whatever the umask, and a store
// that a full disk cannot take is left as it was. Each case runs on a fresh
// tmpfs over /var/lib inside the test program's private mount namespace,
// with a user created for the test in a private copy of /etc/passwd.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>

#include "tool_run.h"

namespace {

namespace fs = std::filesystem;
using braxcfg::test::runTool;
using braxcfg::test::runToolAs;
using braxcfg::test::ToolOptions;

constexpr uid_t kUser = 4242;
const std::string kFolder = "/var/lib/braxcfg";
const std::string kStore = kFolder + "/registry.db";
const std::string kInput = "/var/lib/input.reg";
const std::string kHome = "/run/braxcfg-test-home";

class StorePermissions : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(::mount("tmpfs", "/var/lib", "tmpfs", MS_NOSUID | MS_NODEV, "mode=0755"), 0) << std::strerror(errno);
        std::ofstream(kInput) << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion"
                                 "\\INTF0]\n\"VISAName\"=\"GPIB0\"\n";
        ::chmod(kInput.c_str(), 0644);
        static const bool userMade = makeUser();
        ASSERT_TRUE(userMade);
    }
    void TearDown() override { ::umount2("/var/lib", MNT_DETACH); }

    // The test user, in this namespace only: a private copy of /etc/passwd
    // bound over the real one, and a home folder.
    static bool makeUser() {
        const std::string passwd = "/run/braxcfg-test-passwd";
        fs::copy_file("/etc/passwd", passwd, fs::copy_options::overwrite_existing);
        std::ofstream(passwd, std::ios::app) << "braxcfgtest:x:" << kUser << ":" << kUser << "::" << kHome
                                             << ":/bin/sh\n";
        fs::create_directories(kHome);
        return ::chown(kHome.c_str(), kUser, kUser) == 0 &&
               ::mount(passwd.c_str(), "/etc/passwd", nullptr, MS_BIND, nullptr) == 0;
    }

    static ToolOptions as(uid_t uid, mode_t umask = 022) {
        ToolOptions options;
        options.uid = uid;
        options.umask = umask;
        options.env = {{"HOME", kHome}, {"XDG_STATE_HOME", ""}};
        return options;
    }
    static std::string mode(const std::string& path) {
        struct stat info {};
        if (::lstat(path.c_str(), &info) != 0) return "missing";
        char text[32];
        std::snprintf(text, sizeof text, "%o uid %u", info.st_mode & 07777, info.st_uid);
        return text;
    }
};

TEST_F(StorePermissions, TheMachineWideStoreIsRootsAlone) {
    const auto madeByRoot = [] { ASSERT_EQ(runToolAs({"import", kInput}, as(0)).exitCode, 0); };
    const struct {
        const char* label;
        std::function<void()> prepare;
        ToolOptions options;
        std::vector<std::string> args;
        int exit;
        const char* output;  // part of what the tool prints
        std::function<void()> check;
    } cases[] = {
        {"root, umask 000", [] {}, as(0, 0), {"import", kInput}, 0, "",
         [] { EXPECT_EQ(mode(kFolder) + ", " + mode(kStore), "755 uid 0, 644 uid 0"); }},
        {"root, umask 077", [] {}, as(0, 077), {"import", kInput}, 0, "",
         [] { EXPECT_EQ(mode(kFolder) + ", " + mode(kStore), "755 uid 0, 644 uid 0"); }},
        {"folder writable by others", [&] { madeByRoot(); ::chmod(kFolder.c_str(), 0777); }, as(0), {"interfaces"}, 2,
         "braxcfg is writable by group or others", [] {}},
        {"file writable by group", [&] { madeByRoot(); ::chmod(kStore.c_str(), 0664); }, as(0), {"interfaces"}, 2,
         "registry.db is writable by group or others", [] {}},
        {"file of another user", [&] { madeByRoot(); ASSERT_EQ(::chown(kStore.c_str(), kUser, kUser), 0); }, as(0),
         {"interfaces"}, 2, "registry.db is not owned by root", [] {}},
        {"a link in place of the file",
         [] {
             ::mkdir(kFolder.c_str(), 0755);
             fs::create_symlink("/var/lib/elsewhere.db", kStore);
         },
         as(0), {"import", kInput}, 2, "is not a regular file", [] { EXPECT_EQ(mode("/var/lib/elsewhere.db"), "missing"); }},
        {"user reads root's store", madeByRoot, as(kUser), {"interfaces"}, 0, "INTF0", [] {}},
        {"user cannot write root's store", madeByRoot, as(kUser), {"import", kInput}, 2, "not writable by this user",
         [] {}},
        {"user without a machine-wide store", [] {}, as(kUser), {"import", kInput}, 0, "",
         [] {
             EXPECT_EQ(mode(kFolder), "missing");
             EXPECT_EQ(mode(kHome + "/.local/state/braxcfg/registry.db"), "644 uid 4242");
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        TearDown();
        SetUp();
        fs::remove_all(kHome + "/.local");
        c.prepare();
        const auto run = runToolAs(c.args, c.options);
        EXPECT_EQ(run.exitCode, c.exit) << (run.out + run.err);
        EXPECT_NE((run.out + run.err).find(c.output), std::string::npos) << (run.out + run.err);
        c.check();
    }
}

TEST_F(StorePermissions, AFullDiskChangesNothing) {
    const std::string dir = "/var/lib/full";
    fs::create_directories(dir);
    ASSERT_EQ(::mount("tmpfs", dir.c_str(), "tmpfs", 0, "size=512k"), 0);
    const std::string store = dir + "/store.db";
    ASSERT_EQ(runTool({"--store", store, "import", kInput}).exitCode, 0);
    std::string big = "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Big]\n";
    for (int i = 0; i < 400; ++i) big += "\"v" + std::to_string(i) + "\"=\"" + std::string(1000, 'x') + "\"\n";
    std::ofstream("/var/lib/big.reg") << big;
    {
        std::ofstream filler(dir + "/filler", std::ios::binary);
        const std::string block(4096, '\0');
        while (filler.write(block.data(), block.size())) {
        }
    }
    const auto run = runTool({"--store", store, "import", "/var/lib/big.reg"});
    fs::remove(dir + "/filler");
    EXPECT_EQ(run.exitCode, 2) << (run.out + run.err);
    EXPECT_NE((run.out + run.err).find("the store " + store + " cannot be written: the disk is full"), std::string::npos)
        << (run.out + run.err);
    EXPECT_EQ(runTool({"--store", store, "export", "--key", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Big"}).exitCode, 2);
    ::umount2(dir.c_str(), MNT_DETACH);
}

}  // namespace
