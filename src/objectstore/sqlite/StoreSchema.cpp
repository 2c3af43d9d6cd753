#include "objectstore/sqlite/StoreSchema.h"

#include <algorithm>
#include <string>

#include "objectstore/sqlite/ModelCache.h"
#include "objectstore/sqlite/StoreLayout.h"
#include "objectstore/sqlite/StoreMetadata.h"

namespace vantrel {

namespace {

/// Assigns the next free number to each entity that has none: in a new store, its index plus 1.
void addEntityNumbers(StoreConnection& connection, const ManagedObjectModel& model) {
  auto insert = connection.statement(
      "INSERT INTO Z_PRIMARYKEY (Z_ENT, Z_NAME, Z_SUPER, Z_MAX) SELECT"
      " coalesce((SELECT max(Z_ENT) FROM Z_PRIMARYKEY WHERE Z_ENT < 16000), 0) + 1, ?1,"
      " coalesce((SELECT Z_ENT FROM Z_PRIMARYKEY WHERE Z_NAME = ?2), 0), 0"
      " WHERE NOT EXISTS (SELECT 1 FROM Z_PRIMARYKEY WHERE Z_NAME = ?1)");
  for (const auto& entity : model.entities()) {
    insert.bind(entity.name).bind(entity.superentityName).execute();
  }
}

void addTablesAndColumns(StoreConnection& connection, const StoreLayout& layout) {
  for (const auto& table : layout.tables()) {
    const auto present = connection.columnsOfTable(table.name);
    if (present.empty()) {
      connection.execute(StoreLayout::createTableStatement(table));
      continue;
    }
    for (const auto& column : table.columns) {
      if (std::find(present.begin(), present.end(), column.name) != present.end()) continue;
      connection.execute("ALTER TABLE " + sqlName(table.name) + " ADD COLUMN " +
                         sqlName(column.name) + " " + std::string(column.type));
    }
  }
  for (const auto& statement : layout.createIndexStatements()) connection.execute(statement);
  connection.forgetTables();
}

void insertModelCache(StoreConnection& connection, const ManagedObjectModel& model) {
  const Data content = modelCacheContent(model);
  if (content.empty()) return;
  connection.statement("INSERT INTO Z_MODELCACHE VALUES (?)").bind(content).execute();
}

}  // namespace

bool isEmptyStore(StoreConnection& connection) {
  return !connection.statement("SELECT 1 FROM sqlite_schema LIMIT 1").next();
}

void createStoreSchema(StoreConnection& connection, const ManagedObjectModel& model) {
  // Both have an effect only before the first table is created.
  connection.execute("PRAGMA page_size = 4096");
  connection.execute("PRAGMA auto_vacuum = 2");
  connection.execute("PRAGMA journal_mode = WAL");
  Transaction transaction(connection);
  if (!isEmptyStore(connection)) return;
  addTablesAndColumns(connection, StoreLayout(model));
  connection.execute(
      "CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER PRIMARY KEY, Z_NAME VARCHAR, Z_SUPER INTEGER, Z_MAX"
      " INTEGER);"
      "CREATE TABLE Z_METADATA (Z_VERSION INTEGER PRIMARY KEY, Z_UUID VARCHAR(255), Z_PLIST BLOB);"
      "CREATE TABLE Z_MODELCACHE (Z_CONTENT BLOB)");
  addEntityNumbers(connection, model);
  insertStoreMetadata(connection, model);
  insertModelCache(connection, model);
  connection.forgetTables();
  transaction.commit();
}

void migrateStoreSchema(StoreConnection& connection, const ManagedObjectModel& model) {
  Transaction transaction(connection);
  connection.forgetTables();
  if (readStoreMetadata(connection).versionHashes == model.versionHashes()) return;
  addTablesAndColumns(connection, StoreLayout(model));
  addEntityNumbers(connection, model);
  updateStoreMetadata(connection, model);
  // It holds the older model.
  if (connection.tableExists("Z_MODELCACHE")) {
    connection.execute("DELETE FROM Z_MODELCACHE");
    insertModelCache(connection, model);
  }
  transaction.commit();
  connection.noteWritten();
}

}  // namespace vantrel
