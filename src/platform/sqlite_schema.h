#pragma once
// The tables of a store file.
//
// keys:       one row per key; ids come from AUTOINCREMENT so a deleted key's
//             id is never given to a later key. `name` keeps the case it was
//             created with; `folded` (see sqlite_name_fold.h) is what names
//             are matched and sorted by.
// key_values: one row per value; `seq` is the enumeration order (a new
//             value takes the key's highest seq + 1, an overwrite keeps it).
#include <cstdint>
#include <string>

#include "platform/sqlite_db.h"

namespace braxcfg::platform {

// The row of HKEY_LOCAL_MACHINE, parent of every top-level key.
inline constexpr std::int64_t kRootKeyId = 1;
// Marks a file as a configuration store (the header's application id).
inline constexpr std::int32_t kStoreApplicationId = 0x42435347;
// 2: names holding the micro sign are folded with it kept as it is (1 folded
// it to capital mu).
inline constexpr int kStoreSchemaVersion = 2;

enum class SchemaState { Present, Empty, Foreign };

// Present: our tables; Empty: a database with no tables yet; Foreign: some
// other application's database.
SchemaState inspectSchema(SqliteConnection& db);

// Creates the tables and the root key in one transaction; false with the
// reason in `error` when that fails.
bool createSchema(SqliteConnection& db, std::string* error);

// Brings the folded names of an older store in line with foldName, in one
// transaction; nothing to do for a current one.
bool upgradeSchema(SqliteConnection& db, std::string* error);

}  // namespace braxcfg::platform
