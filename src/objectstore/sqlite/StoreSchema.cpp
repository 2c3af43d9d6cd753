#include "objectstore/sqlite/StoreSchema.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "objectstore/sqlite/StoreLayout.h"
#include "objectstore/sqlite/StoreMetadata.h"

namespace vantrel {

namespace {

using SQLite::TransactionBehavior;

void insertEntityNumbers(StoreConnection& connection, const ManagedObjectModel& model,
                         const StoreLayout& layout) {
  const auto insert = connection.statement(
      "INSERT INTO Z_PRIMARYKEY (Z_ENT, Z_NAME, Z_SUPER, Z_MAX) VALUES (?, ?, ?, 0)");
  const auto& entities = model.entities();
  for (std::size_t index = 0; index < entities.size(); ++index) {
    const std::size_t parent = layout.place(index).parent;
    insert->bind(1, static_cast<std::int64_t>(index + 1));
    insert->bind(2, entities[index].name);
    insert->bind(
        3, parent == StoreLayout::kNone ? std::int64_t{0} : static_cast<std::int64_t>(parent + 1));
    insert->exec();
    insert->reset();
  }
}

/// Entities that the store has no number for get the next free ones.
void addEntityNumbers(StoreConnection& connection, const ManagedObjectModel& model) {
  const auto insert = connection.statement(
      "INSERT INTO Z_PRIMARYKEY (Z_ENT, Z_NAME, Z_SUPER, Z_MAX) SELECT"
      " coalesce((SELECT max(Z_ENT) FROM Z_PRIMARYKEY WHERE Z_ENT < 16000), 0) + 1, ?1,"
      " coalesce((SELECT Z_ENT FROM Z_PRIMARYKEY WHERE Z_NAME = ?2), 0), 0"
      " WHERE NOT EXISTS (SELECT 1 FROM Z_PRIMARYKEY WHERE Z_NAME = ?1)");
  for (const auto& entity : model.entities()) {
    insert->bind(1, entity.name);
    insert->bind(2, entity.superentityName);
    insert->exec();
    insert->reset();
  }
}

void addTablesAndColumns(StoreConnection& connection, const StoreLayout& layout) {
  SQLite::Database& database = connection.database();
  for (const auto& table : layout.tables()) {
    const auto present = connection.columnsOfTable(table.name);
    if (present.empty()) {
      database.exec(StoreLayout::createTableStatement(table));
      continue;
    }
    for (const auto& column : table.columns) {
      if (std::find(present.begin(), present.end(), column.name) != present.end()) continue;
      database.exec("ALTER TABLE " + sqlName(table.name) + " ADD COLUMN " + sqlName(column.name) +
                    " " + std::string(column.type));
    }
  }
  for (const auto& statement : layout.createIndexStatements()) database.exec(statement);
  connection.forgetTables();
}

}  // namespace

bool isEmptyStore(StoreConnection& connection) {
  return !connection.statement("SELECT 1 FROM sqlite_schema LIMIT 1")->executeStep();
}

void createStoreSchema(StoreConnection& connection, const ManagedObjectModel& model) {
  SQLite::Database& database = connection.database();
  // Both must stand before the first table.
  database.exec("PRAGMA page_size = 4096");
  database.exec("PRAGMA auto_vacuum = 2");
  database.exec("PRAGMA journal_mode = WAL");
  SQLite::Transaction transaction(database, TransactionBehavior::IMMEDIATE);
  if (!isEmptyStore(connection)) return;
  const StoreLayout layout(model);
  addTablesAndColumns(connection, layout);
  database.exec(
      "CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER PRIMARY KEY, Z_NAME VARCHAR, Z_SUPER INTEGER, Z_MAX"
      " INTEGER);"
      "CREATE TABLE Z_METADATA (Z_VERSION INTEGER PRIMARY KEY, Z_UUID VARCHAR(255), Z_PLIST BLOB);"
      "CREATE TABLE Z_MODELCACHE (Z_CONTENT BLOB)");
  insertEntityNumbers(connection, model, layout);
  insertStoreMetadata(connection, model);
  connection.forgetTables();
  transaction.commit();
}

void migrateStoreSchema(StoreConnection& connection, const ManagedObjectModel& model) {
  SQLite::Transaction transaction(connection.database(), TransactionBehavior::IMMEDIATE);
  connection.forgetTables();
  if (readStoreMetadata(connection).versionHashes == model.versionHashes()) return;
  addTablesAndColumns(connection, StoreLayout(model));
  addEntityNumbers(connection, model);
  updateStoreMetadata(connection, model);
  // What it held was the older model.
  if (connection.tableExists("Z_MODELCACHE")) {
    connection.database().exec("DELETE FROM Z_MODELCACHE");
  }
  transaction.commit();
  connection.noteWritten();
}

}  // namespace vantrel
