// Opening store files: damaged or foreign files are refused and left byte
// for byte as they were, unreadable and read-only files, new files, and
// where the store lives.
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>

#include "platform/debug_output.h"
#include "platform/sqlite_db.h"
#include "platform/store.h"
#include "store_helper_process.h"
#include "store_test_access.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

namespace fs = std::filesystem;

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// A folder of its own for one test, empty.
std::string freshFolder(const std::string& name) {
    const std::string folder = test::testOutputDir("store-files") + "/" + name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

// The bytes of a real store with some content, fully checkpointed into the
// main file.
std::string realStoreBytes() {
    const std::string path = freshFolder("source") + "/source.db";
    EXPECT_EQ(openStore(path).state, StoreOpenState::Open);
    StoreBackend& store = currentStore();
    for (int i = 0; i < 40; ++i) {
        test::KeyHandle key(store, test::createKey(store, "Tree\\Key" + std::to_string(i)));
        test::setString(store, key, "text", std::string(200, static_cast<char>('a' + i % 26)));
    }
    closeStore();
    return readFile(path);
}

std::string randomBytes(std::size_t size) {
    std::mt19937 random(1234);
    std::string bytes(size, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    return bytes;
}

std::string foreignDatabaseBytes() {
    const std::string path = freshFolder("foreign") + "/other.db";
    SqliteConnection db;
    db.open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    db.exec("CREATE TABLE keys (x); INSERT INTO keys VALUES (1);");
    db.close();
    return readFile(path);
}

TEST(StoreFile, DamagedOrForeignFilesAreRefusedAndLeftAlone) {
    const std::string real = realStoreBytes();
    ASSERT_GT(real.size(), 16384u);
    std::string overwrittenPage = real;
    for (std::size_t i = 4096 + 8; i < 8192; ++i) overwrittenPage[i] = '\xEE';
    struct CorruptCase {
        const char* label;
        std::string bytes;
    };
    const CorruptCase cases[] = {
        {"random bytes", randomBytes(8192)},
        {"a text file", "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE]\r\n"},
        {"only a header start", std::string("SQLite format 3\0\x10\x00", 18)},
        {"truncated store", real.substr(0, real.size() / 2)},
        {"overwritten page", overwrittenPage},
        {"another program's database", foreignDatabaseBytes()},
    };
    const std::string folder = freshFolder("corrupt");
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string path = folder + "/case" + std::to_string(n++) + ".db";
        writeFile(path, c.bytes);

        DebugCapture debug;
        const StoreStatus status = openStore(path);
        EXPECT_EQ(status.state, StoreOpenState::Corrupt);
        EXPECT_FALSE(status.writable);
        EXPECT_NE(status.error.find(path), std::string::npos) << status.error;
        EXPECT_EQ(debug.lines().size(), 1u);
        EXPECT_EQ(debug.text().rfind("Configuration store not opened: ", 0), 0u) << debug.text();

        // The process carries on as with unopened keys.
        StoreBackend& store = currentStore();
        HKey key = 0x77;
        EXPECT_NE(store.createKey(kLocalMachine, "New", kKeyAllAccess, &key, nullptr), kErrorSuccess);
        EXPECT_EQ(key, kNoKey);
        EXPECT_NE(test::setString(store, kLocalMachine, "v", "x"), kErrorSuccess);
        EXPECT_EQ(test::subkeyNames(store, kLocalMachine), std::vector<std::string>{});
        closeStore();
        EXPECT_TRUE(readFile(path) == c.bytes) << "the file was modified";
    }
}

TEST(StoreFile, OpenStateFollowsPermissions) {
    struct PermissionCase {
        const char* label;
        fs::perms folder;
        fs::perms file;
        const char* expected;  // what the helper process reports
    };
    using p = fs::perms;
    const PermissionCase cases[] = {
        {"machine-wide layout", p::owner_all | p::group_read | p::group_exec | p::others_read | p::others_exec,
         p::owner_read | p::owner_write | p::group_read | p::others_read, "state=0 writable=0 read=old write=1013\n"},
        {"read-only file", p::all, p::owner_read | p::group_read | p::others_read,
         "state=0 writable=0 read=old write=1013\n"},
        {"writable by all", p::all, p::owner_read | p::owner_write | p::group_read | p::group_write |
                                        p::others_read | p::others_write,
         "state=0 writable=1 read=old write=0\n"},
        {"unreadable file", p::all, p::none, "state=3 writable=0 read=<none> write=5\n"},
    };
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string folder = freshFolder("perm" + std::to_string(n++));
        const std::string path = folder + "/registry.db";
        ASSERT_EQ(openStore(path).state, StoreOpenState::Open);
        test::KeyHandle probe(currentStore(), test::createKey(currentStore(), "SOFTWARE\\Probe"));
        ASSERT_EQ(test::setString(currentStore(), probe, "v", "old"), kErrorSuccess);
        closeStore();
        const std::string before = readFile(path);
        // Every file of the store gets the mode; SQLite's side files follow
        // the main file's.
        for (const char* suffix : {"", "-wal", "-shm"})
            if (fs::exists(path + suffix)) fs::permissions(path + suffix, c.file);
        fs::permissions(folder, c.folder);

        const test::HelperResult result = test::runHelper({"read-only", path});
        fs::permissions(folder, p::all);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.output, c.expected);
        if (std::string(c.expected).find("writable=0") != std::string::npos) {
            EXPECT_TRUE(readFile(path) == before) << "a read-only store was modified";
        }
    }
}

TEST(StoreFile, NewStoresAreCreatedReadableByAllWritableByOwner) {
    const std::string folder = freshFolder("new");
    const mode_t previous = ::umask(077);
    const std::string path = folder + "/state/braxcfg/registry.db";
    const StoreStatus status = openStore(path);
    ::umask(previous);
    ASSERT_EQ(status.state, StoreOpenState::Open) << status.error;
    EXPECT_TRUE(status.writable);
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u);
    closeStore();

    // An empty file (as a package might install) becomes a store too.
    writeFile(folder + "/empty.db", "");
    EXPECT_EQ(openStore(folder + "/empty.db").state, StoreOpenState::Open);
    EXPECT_EQ(test::setString(currentStore(), kLocalMachine, "v", "x"), kErrorSuccess);
    closeStore();
}

TEST(StoreFile, UnusablePathsAreReportedNotCreated) {
    const std::string folder = freshFolder("unusable");
    writeFile(folder + "/plain", "x");
    struct PathCase {
        const char* label;
        std::string path;
        StoreOpenState state;
    };
    const PathCase cases[] = {
        {"a folder", folder, StoreOpenState::Unreadable},
        {"below a plain file", folder + "/plain/registry.db", StoreOpenState::Missing},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::uint64_t generation = storeGeneration();
        const StoreStatus status = openStore(c.path);
        EXPECT_EQ(status.state, c.state);
        EXPECT_FALSE(status.error.empty());
        EXPECT_EQ(storeGeneration(), generation + 1);
        EXPECT_EQ(currentStoreStatus().state, c.state);
        HKey key = kNoKey;
        EXPECT_NE(currentStore().openKey(kLocalMachine, "", kKeyAllAccess, &key), kErrorSuccess);
    }
    const std::uint64_t generation = storeGeneration();
    closeStore();
    EXPECT_EQ(storeGeneration(), generation + 1);
}

// Sets environment variables for one scope and puts the old values back.
class EnvironmentScope {
public:
    void set(const char* name, const char* value) {
        const char* old = std::getenv(name);
        saved_.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
        if (value)
            ::setenv(name, value, 1);
        else
            ::unsetenv(name);
    }
    ~EnvironmentScope() {
        for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
            if (it->second)
                ::setenv(it->first.c_str(), it->second->c_str(), 1);
            else
                ::unsetenv(it->first.c_str());
        }
    }

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

TEST(StoreLocation, ChosenFromTheEnvironment) {
    struct LocationCase {
        const char* label;
        const char* store;
        const char* stateHome;
        const char* home;
        std::string resolved;  // empty: not asked (would consult the machine-wide folder)
        std::string perUser;
    };
    const LocationCase cases[] = {
        {"explicit store", "/tmp/x/my.db", "/state", "/home/u", "/tmp/x/my.db", "/state/braxcfg/registry.db"},
        {"state home unset", "/s.db", nullptr, "/home/u", "/s.db", "/home/u/.local/state/braxcfg/registry.db"},
        {"relative state home is ignored", nullptr, "rel", "/home/u", "",
         "/home/u/.local/state/braxcfg/registry.db"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        EnvironmentScope env;
        env.set("BRAXCFG_STORE", c.store);
        env.set("XDG_STATE_HOME", c.stateHome);
        env.set("HOME", c.home);
        EXPECT_EQ(perUserStorePath(), c.perUser);
        if (!c.resolved.empty()) {
            EXPECT_EQ(resolveStorePath(), c.resolved);
        }
    }
}

}  // namespace
}  // namespace braxcfg::platform
