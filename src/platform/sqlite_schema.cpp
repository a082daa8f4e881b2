#include "platform/sqlite_schema.h"

#include <vector>

#include "platform/sqlite_name_fold.h"

namespace braxcfg::platform {

SchemaState inspectSchema(SqliteConnection& db) {
    const std::int64_t objects = db.queryInt("SELECT count(*) FROM sqlite_master", -1);
    if (objects == 0) return SchemaState::Empty;
    if (db.queryInt("PRAGMA application_id", 0) != kStoreApplicationId) return SchemaState::Foreign;
    return SchemaState::Present;
}

bool createSchema(SqliteConnection& db, std::string* error) {
    static const std::string sql =
        "BEGIN IMMEDIATE;"
        "CREATE TABLE IF NOT EXISTS keys ("
        "  id INTEGER PRIMARY KEY AUTOINCREMENT,"
        "  parent INTEGER,"
        "  name BLOB NOT NULL,"
        "  folded BLOB NOT NULL,"
        "  UNIQUE (parent, folded));"
        "CREATE TABLE IF NOT EXISTS key_values ("
        "  key_id INTEGER NOT NULL,"
        "  seq INTEGER NOT NULL,"
        "  name BLOB NOT NULL,"
        "  folded BLOB NOT NULL,"
        "  type INTEGER NOT NULL,"
        "  data BLOB NOT NULL,"
        "  PRIMARY KEY (key_id, folded)) WITHOUT ROWID;"
        "CREATE INDEX IF NOT EXISTS key_values_order ON key_values (key_id, seq);"
        "INSERT OR IGNORE INTO keys (id, parent, name, folded) VALUES (" +
        std::to_string(kRootKeyId) +
        ", NULL, 'HKEY_LOCAL_MACHINE', x'');"
        "PRAGMA application_id = " +
        std::to_string(kStoreApplicationId) +
        ";"
        "PRAGMA user_version = " +
        std::to_string(kStoreSchemaVersion) +
        ";"
        "COMMIT;";
    if (db.exec(sql.c_str()) == SQLITE_OK) return true;
    *error = db.lastError();
    db.exec("ROLLBACK");
    return false;
}

namespace {

struct NameRow {
    std::int64_t owner;  // parent key, or key of a value
    std::string folded;
    std::string name;
};

// Folds again every name of a table that holds the micro sign (0xB5).
// `select` gives owner, folded and name; `update` takes the new folded
// name, the owner and the old folded name.
bool refoldMicroSign(SqliteConnection& db, const char* select, const char* update) {
    SqliteStatement* rows = db.cached(select);
    SqliteStatement* write = db.cached(update);
    if (!rows || !rows->valid() || !write || !write->valid()) return false;
    std::vector<NameRow> found;
    int rc = SQLITE_ROW;
    while ((rc = rows->step()) == SQLITE_ROW)
        found.push_back({rows->columnInt(0), std::string(rows->columnBlob(1)), std::string(rows->columnBlob(2))});
    rows->reset();
    if (rc != SQLITE_DONE) return false;
    for (const NameRow& row : found) {
        rc = write->bindBlob(1, foldName(row.name)).bind(2, row.owner).bindBlob(3, row.folded).step();
        write->reset();
        if (rc != SQLITE_DONE) return false;
    }
    return true;
}

}  // namespace

bool upgradeSchema(SqliteConnection& db, std::string* error) {
    if (db.queryInt("PRAGMA user_version", kStoreSchemaVersion) >= kStoreSchemaVersion) return true;
    const bool done =
        db.exec("BEGIN IMMEDIATE") == SQLITE_OK &&
        refoldMicroSign(db, "SELECT parent, folded, name FROM keys WHERE instr(name, x'B5') > 0",
                        "UPDATE keys SET folded = ? WHERE parent = ? AND folded = ?") &&
        refoldMicroSign(db, "SELECT key_id, folded, name FROM key_values WHERE instr(name, x'B5') > 0",
                        "UPDATE key_values SET folded = ? WHERE key_id = ? AND folded = ?") &&
        db.exec(("PRAGMA user_version = " + std::to_string(kStoreSchemaVersion)).c_str()) == SQLITE_OK &&
        db.exec("COMMIT") == SQLITE_OK;
    if (done) return true;
    *error = db.lastError();
    db.exec("ROLLBACK");
    return false;
}

}  // namespace braxcfg::platform
