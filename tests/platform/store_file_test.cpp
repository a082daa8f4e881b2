// Opening store files: damaged or foreign files are refused and left byte
// for byte as they were, unreadable and read-only files, unusable paths.
// Where the store lives and the modes it is made with are the tool's and the
// root-only permissions test's.
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>

#include "file_bytes.h"
#include "platform/debug_output.h"
#include "platform/sqlite_db.h"
#include "platform/sqlite_store_file.h"
#include "platform/store.h"
#include "store_test_access.h"
#include "store_files.h"
#include "temp_store.h"

namespace braxcfg::platform {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::readFile;
using test::setString;
using test::writeFile;

// An empty folder of its own for one test.
std::string freshFolder(const std::string& name) {
    const std::string folder = test::testOutputDir("store-files") + "/" + name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

// A real store holding SOFTWARE\Probe "v" = "old" and some bulk, closed
// (so fully checkpointed into the main file).
std::string makeStore(const std::string& path, int bulkKeys) {
    EXPECT_EQ(openStore(path).state, StoreOpenState::Open);
    StoreBackend& store = currentStore();
    EXPECT_EQ(setString(store, test::createKey(store, "SOFTWARE\\Probe"), "v", "old"), 0);
    for (int i = 0; i < bulkKeys; ++i)
        setString(store, test::createKey(store, "Tree\\Key" + std::to_string(i)), "text",
                  std::string(200, static_cast<char>('a' + i % 26)));
    closeStore();
    return readFile(path);
}

TEST(StoreFile, DamagedOrForeignFilesAreRefusedAndLeftAlone) {
    const std::string folder = freshFolder("corrupt");
    const std::string real = makeStore(folder + "/source.db", 40);
    ASSERT_GT(real.size(), 16384u);
    std::string overwrittenPage = real;
    for (std::size_t i = 4096 + 8; i < 8192; ++i) overwrittenPage[i] = '\xEE';
    SqliteConnection foreign;
    foreign.open(folder + "/foreign.db", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    foreign.exec("CREATE TABLE keys (x); INSERT INTO keys VALUES (1);");
    foreign.close();

    // An existing file is never turned into a store, not even an empty one.
    const std::pair<const char*, std::string> cases[] = {
        {"an empty file", ""},
        {"a text file", "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE]\r\n"},
        {"truncated store", real.substr(0, real.size() / 2)},
        {"overwritten page", overwrittenPage},
        {"another program's database", readFile(folder + "/foreign.db")},
    };
    int n = 0;
    for (const auto& [label, bytes] : cases) {
        SCOPED_TRACE(label);
        const std::string path = folder + "/case" + std::to_string(n++) + ".db";
        writeFile(path, bytes);
        DebugCapture debug;
        const StoreStatus status = openStore(path);
        EXPECT_EQ(status.state, StoreOpenState::Corrupt);
        EXPECT_NE(status.error.find(path), std::string::npos) << status.error;
        EXPECT_EQ(debug.lines().size(), 1u);
        EXPECT_EQ(debug.text().substr(0, 32), "Configuration store not opened: ");
        // The process carries on as with unopened keys.
        HKey key = 0x77;
        EXPECT_NE(currentStore().createKey(kLocalMachine, "New", kKeyAllAccess, &key, nullptr), kErrorSuccess);
        EXPECT_EQ(key, kNoKey);
        closeStore();
        EXPECT_TRUE(readFile(path) == bytes) << "the file was modified";
    }
}

// What a process without root rights finds in the store at path.
std::string openAsUser(const std::string& path) {
    if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) return "cannot drop rights";
    const StoreStatus status = openStore(path);
    const HKey probe = test::createKey(currentStore(), "SOFTWARE\\Probe");
    const std::string read = test::valueBytes(currentStore(), probe, "v");
    const RegResult written = setString(currentStore(), probe, "v", "new");
    return "state=" + std::to_string(static_cast<int>(status.state)) + " writable=" + std::to_string(status.writable) +
           " read=" + read.c_str() + " write=" + std::to_string(written);
}

TEST(StoreFile, OpenStateFollowsPermissions) {
    using p = fs::perms;
    // folder, file: the modes every file of the store gets; expected: what
    // a process without root rights reports.
    const struct { const char* label; p folder, file; const char* expected; } cases[] = {
        {"writable by all", p(0777), p(0666), "state=0 writable=1 read=old write=0"},
        {"unreadable file", p(0777), p(0), "state=3 writable=0 read=<missing> write=5"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string folder = freshFolder("permissions");
        const std::string path = folder + "/registry.db";
        const std::string before = makeStore(path, 0);
        for (const char* suffix : test::kStoreFileSuffixes)
            if (fs::exists(path + suffix)) fs::permissions(path + suffix, c.file);
        fs::permissions(folder, c.folder);
        const std::string report = test::finishChild(test::startChild([&] { return openAsUser(path); }));
        fs::permissions(folder, p::all);
        EXPECT_EQ(report, c.expected);
        const bool readOnly = std::string(c.expected).find("writable=0") != std::string::npos;
        EXPECT_TRUE(!readOnly || readFile(path) == before) << "a read-only store was modified";
    }
}

// The mode of a new store and its folders is the root-only store permissions
// test's; here what happens where no store can be made.
TEST(StoreFile, UnusablePathsAreReportedAndCountAsANewStore) {
    const std::string folder = freshFolder("unusable");
    writeFile(folder + "/plain", "x");
    // Like closing, they count as a new store for caches.
    for (const auto& [path, state] : {std::pair{folder, StoreOpenState::Unreadable},
                                      std::pair{folder + "/plain/registry.db", StoreOpenState::Missing}}) {
        const std::uint64_t generation = storeGeneration();
        const StoreStatus unusable = openStore(path);
        EXPECT_EQ(unusable.state, state) << path;
        EXPECT_FALSE(unusable.error.empty()) << path;
        EXPECT_EQ(storeGeneration(), generation + 1) << path;
    }
    const std::uint64_t generation = storeGeneration();
    closeStore();
    EXPECT_EQ(storeGeneration(), generation + 1);
}

// A store written when the micro sign still folded to capital mu finds its
// names again once opened for writing.
TEST(StoreFile, OlderStoresAreRefoldedOnOpening) {
    const test::TempStore temp;
    ASSERT_EQ(setString(currentStore(), test::createKey(currentStore(), "\xB5V"), "\xB5v", "x"), 0);
    closeStore();
    {
        SqliteConnection db;
        ASSERT_EQ(db.open(temp.path(), SQLITE_OPEN_READWRITE), SQLITE_OK);
        // U+039C then 'V', as the old rule folded "\xB5V" and "\xB5v".
        ASSERT_EQ(db.exec("UPDATE keys SET folded = x'039C0056' WHERE name = x'B556';"
                          "UPDATE key_values SET folded = x'039C0056' WHERE name = x'B576';"
                          "PRAGMA user_version = 1"),
                  SQLITE_OK);
    }
    temp.reopen();
    HKey opened = kNoKey;
    ASSERT_EQ(currentStore().openKey(kLocalMachine, "\xB5v", kKeyAllAccess, &opened), kErrorSuccess);
    EXPECT_EQ(test::valueBytes(currentStore(), opened, "\xB5V"), "x\0"s);
}

// Whether another process finds the store file locked the way every open
// connection in WAL mode keeps it (its shared lock range), asked from a child
// because a process never conflicts with its own locks.
bool lockedForOtherProcesses(const std::string& path) {
    return test::finishChild(test::startChild([&] {
               const int fd = ::open(path.c_str(), O_RDONLY);
               struct flock lock {};
               lock.l_type = F_WRLCK;
               lock.l_whence = SEEK_SET;
               lock.l_start = 0x40000002;  // the shared-lock bytes past the pending and reserved ones
               lock.l_len = 510;
               return fd >= 0 && ::fcntl(fd, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK ? "held" : "free";
           })) == "held";
}

// The tool and the plug-in it loads each open the store in one process; the
// second opening must not drop the locks that guard the first connection,
// or another process could check the log back into the file under it.
TEST(StoreFile, SecondOpeningInOneProcessKeepsTheFirstOnesLocks) {
    const std::string path = freshFolder("two-openings") + "/registry.db";
    makeStore(path, 0);
    SqliteStoreOpening first = openSqliteStore(path);
    ASSERT_EQ(test::valueBytes(*first.backend, test::createKey(*first.backend, "SOFTWARE\\Probe"), "v"), "old\0"s);
    ASSERT_TRUE(lockedForOtherProcesses(path));
    SqliteStoreOpening second = openSqliteStore(path);
    ASSERT_EQ(second.status.state, StoreOpenState::Open) << second.status.error;
    EXPECT_TRUE(lockedForOtherProcesses(path));
}

}  // namespace
}  // namespace braxcfg::platform
