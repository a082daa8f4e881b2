#include "platform/sqlite_schema.h"

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

}  // namespace braxcfg::platform
