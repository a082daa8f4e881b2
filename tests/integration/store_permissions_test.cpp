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
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

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
        return std::system("cp /etc/passwd /run/braxcfg-test-passwd && mkdir -p /run/braxcfg-test-home && "
                           "echo 'braxcfgtest:x:4242:4242::/run/braxcfg-test-home:/bin/sh' >>/run/braxcfg-test-passwd "
                           "&& chown 4242:4242 /run/braxcfg-test-home && "
                           "mount --bind /run/braxcfg-test-passwd /etc/passwd") == 0;
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
    // After each case: the folder, the store, the user's own store, and
    // where a link in place of the store points.
    const auto state = [] {
        return mode(kFolder) + ", " + mode(kStore) + ", " + mode(kHome + "/.local/state/braxcfg/registry.db") + ", " +
               mode("/var/lib/elsewhere.db");
    };
    // rootStore: root made the store first; prepare: a shell command after that;
    // output: a part of what the tool prints.
    const struct { const char* label; bool rootStore; const char* prepare; ToolOptions options;
                   std::vector<std::string> args; int exit; const char* output; const char* state; } cases[] = {
        {"root, umask 000", false, "", as(0, 0), {"import", kInput}, 0, "", "755 uid 0, 644 uid 0, missing, missing"},
        {"root, umask 077", false, "", as(0, 077), {"import", kInput}, 0, "", "755 uid 0, 644 uid 0, missing, missing"},
        {"folder writable by others", true, "chmod 777 /var/lib/braxcfg", as(0), {"interfaces"}, 2,
         "braxcfg is writable by group or others", "777 uid 0, 644 uid 0, missing, missing"},
        {"file writable by group", true, "chmod 664 /var/lib/braxcfg/registry.db", as(0), {"interfaces"}, 2,
         "registry.db is writable by group or others", "755 uid 0, 664 uid 0, missing, missing"},
        {"file of another user", true, "chown 4242 /var/lib/braxcfg/registry.db", as(0), {"interfaces"}, 2,
         "registry.db is not owned by root", "755 uid 0, 644 uid 4242, missing, missing"},
        {"a link in place of the file", false,
         "mkdir /var/lib/braxcfg && ln -s /var/lib/elsewhere.db /var/lib/braxcfg/registry.db",
         as(0), {"import", kInput}, 2, "is not a regular file", "755 uid 0, 777 uid 0, missing, missing"},
        {"user reads root's store", true, "", as(kUser), {"interfaces"}, 0, "INTF0",
         "755 uid 0, 644 uid 0, missing, missing"},
        {"user cannot write root's store", true, "", as(kUser), {"import", kInput}, 2, "not writable by this user",
         "755 uid 0, 644 uid 0, missing, missing"},
        {"user without a machine-wide store", false, "", as(kUser), {"import", kInput}, 0, "",
         "missing, missing, 644 uid 4242, missing"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        TearDown();
        SetUp();
        fs::remove_all(kHome + "/.local");
        ASSERT_TRUE(!c.rootStore || runToolAs({"import", kInput}, as(0)).exitCode == 0);
        ASSERT_EQ(std::system(*c.prepare != '\0' ? c.prepare : "true"), 0);
        const auto run = runToolAs(c.args, c.options);
        EXPECT_EQ(run.exitCode, c.exit) << (run.out + run.err);
        EXPECT_NE((run.out + run.err).find(c.output), std::string::npos) << (run.out + run.err);
        EXPECT_EQ(state(), c.state);
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
    std::system("cat /dev/zero >/var/lib/full/filler 2>/dev/null");  // fails once the disk is full
    const auto run = runTool({"--store", store, "import", "/var/lib/big.reg"});
    fs::remove(dir + "/filler");
    EXPECT_EQ(run.exitCode, 2) << (run.out + run.err);
    const std::string said = run.out + run.err;
    EXPECT_NE(said.find("the store " + store + " cannot be written: the disk is full"), std::string::npos) << said;
    EXPECT_EQ(runTool({"--store", store, "export", "--key", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Big"}).exitCode, 2);
    ::umount2(dir.c_str(), MNT_DETACH);
}

}  // namespace
