#include "platform/sqlite_store_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <vector>

#include "platform/sqlite_backend.h"
#include "platform/sqlite_schema.h"

namespace braxcfg::platform {
namespace {

// Another process may hold the write lock for a whole dialog's worth of
// changes; wait that long, but never forever.
constexpr int kBusyTimeoutMs = 5000;
constexpr std::size_t kHeaderSize = 100;
constexpr char kSqliteMagic[] = "SQLite format 3";  // 16 bytes with its NUL

struct Failure {
    StoreOpenState state;
    std::string error;
};

SqliteStoreOpening failed(const std::string& path, StoreOpenState state, std::string error) {
    SqliteStoreOpening opening;
    opening.status.state = state;
    opening.status.path = path;
    opening.status.error = std::move(error);
    return opening;
}

std::string folderOf(const std::string& path) {
    const auto parent = std::filesystem::path(path).parent_path();
    return parent.empty() ? std::string(".") : parent.string();
}

std::string uriEncoded(const std::string& path);
std::optional<Failure> openForWriting(const std::string& path, SqliteConnection& db);

// Creates the folders of `folder` that are missing, each 0755 whatever the
// umask.
bool createFolders(const std::string& folder, std::string* error) {
    std::error_code ec;
    const std::filesystem::path wanted = std::filesystem::absolute(folder, ec);
    std::filesystem::path built;
    for (const auto& part : wanted) {
        built /= part;
        if (::mkdir(built.c_str(), 0755) == 0) {
            ::chmod(built.c_str(), 0755);
        } else if (errno != EEXIST) {
            *error = "cannot create the folder " + built.string() + ": " + std::strerror(errno);
            return false;
        }
    }
    return true;
}

// A new store is built complete under a private name and then linked into
// place, so nobody ever sees a store file that is empty or half set up,
// and no existing file or symbolic link at `path` is ever written through.
// It gets mode 0644 whatever the umask: only its owner writes it.
bool createStoreFile(const std::string& path, std::string* error) {
    if (!createFolders(folderOf(path), error)) return false;
    std::string temp = folderOf(path) + "/.registry-new-XXXXXX";
    const int fd = ::mkstemp(temp.data());
    if (fd < 0) {
        *error = "cannot create a store in " + folderOf(path) + ": " + std::strerror(errno);
        return false;
    }
    ::fchmod(fd, 0644);
    ::close(fd);
    bool built = false;
    {
        SqliteConnection db;
        built = db.open(uriEncoded(temp), SQLITE_OPEN_READWRITE) == SQLITE_OK;
        if (built) {
            const auto failure = openForWriting(temp, db);
            built = !failure;
            if (failure) *error = "cannot set up a new store: " + failure->error;
        } else {
            *error = "cannot set up a new store: " + db.lastError();
        }
    }
    const bool linked = built && ::link(temp.c_str(), path.c_str()) == 0;
    const int linkErrno = errno;
    for (const char* suffix : {"", "-wal", "-shm"}) ::unlink((temp + suffix).c_str());
    if (!built) return false;
    if (!linked && linkErrno != EEXIST) {  // EEXIST: another process was quicker
        *error = "cannot create " + path + ": " + std::strerror(linkErrno);
        return false;
    }
    return true;
}

// Reads the first bytes of `path` through SQLite's own file layer. A plain
// descriptor would do, but closing it drops every lock this process holds on
// the file, and the tool and the plug-in it loads each keep a connection to
// the store open: SQLite's layer keeps such a descriptor until those locks go.
bool readHeader(const std::string& path, std::array<unsigned char, kHeaderSize>& header, std::string* error) {
    sqlite3_vfs* vfs = sqlite3_vfs_find(nullptr);
    std::error_code ec;
    const std::string absolute = std::filesystem::absolute(path, ec).string();
    // The layer keeps the name's address while the file is open.
    const std::string name = ec ? path : absolute;
    std::vector<sqlite3_int64> space((static_cast<std::size_t>(vfs->szOsFile) + 7) / 8 + 1);
    auto* file = reinterpret_cast<sqlite3_file*>(space.data());
    int flags = 0;
    if (vfs->xOpen(vfs, name.c_str(), file, SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_READONLY, &flags) != SQLITE_OK) {
        if (file->pMethods) file->pMethods->xClose(file);
        *error = std::strerror(errno);
        return false;
    }
    const int rc = file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0);
    file->pMethods->xClose(file);
    return rc == SQLITE_OK || rc == SQLITE_IOERR_SHORT_READ;
}

// Looks at the file header before SQLite reads the file as a database, so a
// file that is not a store is never handed to code that might write to it.
// Empty when it looks sound.
std::string headerProblem(const std::array<unsigned char, kHeaderSize>& header, off_t size) {
    if (size < static_cast<off_t>(kHeaderSize))
        return size == 0 ? "the file is empty, not a store (remove it to have a new store made)"
                         : "the file is too short to be a store";
    if (std::memcmp(header.data(), kSqliteMagic, sizeof kSqliteMagic) != 0)
        return "the file is not a store (unknown header)";
    std::uint32_t pageSize = (std::uint32_t{header[16]} << 8) | header[17];
    if (pageSize == 1) pageSize = 65536;
    if (pageSize < 512 || (pageSize & (pageSize - 1)) != 0) return "the header is damaged (page size)";
    // Whether the pages are all there is SQLite's to judge: in WAL mode the
    // newest pages, and the page count that counts them, may still be only
    // in the log, so the main file alone can look short while it is sound.
    return {};
}

// The file name as an SQLite URI, so that no file name is ever read as
// options ("file:x?mode=memory" is a file of that name): absolute, with an
// empty authority, and the characters a URI gives meaning to escaped.
std::string uriEncoded(const std::string& path) {
    std::error_code ec;
    const std::string absolute = std::filesystem::absolute(path, ec).string();
    std::string uri = "file://";
    for (const char c : ec ? path : absolute) {
        if (c == '?' || c == '#' || c == '%') {
            static const char hex[] = "0123456789ABCDEF";
            uri += '%';
            uri += hex[(static_cast<unsigned char>(c) >> 4) & 0xF];
            uri += hex[static_cast<unsigned char>(c) & 0xF];
        } else {
            uri += c;
        }
    }
    return uri;
}

// The result of PRAGMA quick_check: "ok", a description of the damage, or
// empty with the SQLite code in *rc when the check could not run.
std::string quickCheck(SqliteConnection& db, int* rc) {
    StatementUse stmt(db.cached("PRAGMA quick_check(1)"));
    if (!stmt.valid()) {
        *rc = sqlite3_errcode(db.handle());
        return {};
    }
    *rc = stmt->step();
    if (*rc != SQLITE_ROW) return {};
    *rc = SQLITE_OK;
    return std::string(stmt->columnBlob(0));
}

bool cannotOpenSideFiles(int rc) {
    const int primary = rc & 0xFF;
    return primary == SQLITE_CANTOPEN || primary == SQLITE_READONLY;
}

bool isDamage(int rc) {
    const int primary = rc & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

// Opens read-only and checks the file. A reader who cannot create the
// shared-memory file next to a store in WAL mode still reads it, as an
// unchanging file.
std::optional<Failure> openChecked(const std::string& path, SqliteConnection& db) {
    int rc = SQLITE_OK;
    std::string verdict;
    for (const bool immutable : {false, true}) {
        const std::string name = uriEncoded(path) + (immutable ? "?immutable=1" : "");
        rc = db.open(name, SQLITE_OPEN_READONLY);
        if (rc == SQLITE_OK) {
            sqlite3_busy_timeout(db.handle(), kBusyTimeoutMs);
            verdict = quickCheck(db, &rc);
        }
        if (rc == SQLITE_OK || !cannotOpenSideFiles(rc)) break;
    }
    if (isDamage(rc)) return Failure{StoreOpenState::Corrupt, "the store is damaged: " + db.lastError()};
    if (rc != SQLITE_OK) return Failure{StoreOpenState::Unreadable, "cannot read the store: " + db.lastError()};
    if (verdict != "ok") return Failure{StoreOpenState::Corrupt, "the store is damaged: " + verdict};
    if (inspectSchema(db) == SchemaState::Foreign)
        return Failure{StoreOpenState::Corrupt, "the file is a database of another program, not a store"};
    return std::nullopt;
}

bool writableByUs(const std::string& path) {
    // The folder too: SQLite keeps its log and shared-memory files there.
    return ::access(path.c_str(), W_OK) == 0 && ::access(folderOf(path).c_str(), W_OK) == 0;
}

std::optional<Failure> openForWriting(const std::string& path, SqliteConnection& db) {
    if (db.open(uriEncoded(path), SQLITE_OPEN_READWRITE) != SQLITE_OK)
        return Failure{StoreOpenState::Unreadable, "cannot open the store: " + db.lastError()};
    sqlite3_busy_timeout(db.handle(), kBusyTimeoutMs);
    // Keep the log files after the last writer closes, so readers without
    // write access to the folder can still open a store in WAL mode.
    int persist = 1;
    sqlite3_file_control(db.handle(), nullptr, SQLITE_FCNTL_PERSIST_WAL, &persist);
    db.exec("PRAGMA journal_mode = WAL");
    db.exec("PRAGMA synchronous = NORMAL");
    // Busy writers in several processes can keep the log from restarting
    // for a while; once it does, give the disk space back.
    db.exec("PRAGMA journal_size_limit = 4194304");
    std::string error;
    if (inspectSchema(db) == SchemaState::Empty && !createSchema(db, &error))
        return Failure{StoreOpenState::Unreadable, "cannot set up the store: " + error};
    if (!upgradeSchema(db, &error)) return Failure{StoreOpenState::Unreadable, "cannot upgrade the store: " + error};
    return std::nullopt;
}

}  // namespace

SqliteStoreOpening openSqliteStore(const std::string& path, StoreAccess access) {
    if (path.empty()) return failed(path, StoreOpenState::Missing, "no store file named (the path is empty)");
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        if (errno != ENOENT && errno != ENOTDIR)
            return failed(path, StoreOpenState::Unreadable, path + ": " + std::strerror(errno));
        if (access == StoreAccess::ReadOnly)
            return failed(path, StoreOpenState::Missing,
                          path + ": no such file (a command that only reads does not make one)");
        std::string error;
        if (!createStoreFile(path, &error)) return failed(path, StoreOpenState::Missing, error);
        if (::stat(path.c_str(), &info) != 0)
            return failed(path, StoreOpenState::Missing, path + ": " + std::strerror(errno));
    }
    if (!S_ISREG(info.st_mode)) return failed(path, StoreOpenState::Unreadable, path + ": not a regular file");

    std::array<unsigned char, kHeaderSize> header{};
    std::string readError;
    if (!readHeader(path, header, &readError))
        return failed(path, StoreOpenState::Unreadable, path + ": " + readError);
    const std::string problem = headerProblem(header, info.st_size);
    if (!problem.empty()) return failed(path, StoreOpenState::Corrupt, path + ": " + problem);

    auto db = std::make_unique<SqliteConnection>();
    if (auto failure = openChecked(path, *db)) return failed(path, failure->state, path + ": " + failure->error);
    const bool writable = access == StoreAccess::Change && writableByUs(path);
    if (writable) {
        if (auto failure = openForWriting(path, *db))
            return failed(path, failure->state, path + ": " + failure->error);
    }

    SqliteStoreOpening opening;
    opening.status.state = StoreOpenState::Open;
    opening.status.writable = writable;
    opening.status.path = path;
    opening.backend = std::make_unique<SqliteBackend>(std::move(db), writable);
    return opening;
}

}  // namespace braxcfg::platform
