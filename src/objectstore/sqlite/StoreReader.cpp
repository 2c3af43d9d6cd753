#include "objectstore/sqlite/StoreReader.h"

#include <sqlite3.h>

#include <algorithm>

#include "objectstore/model/AttributeValues.h"
#include "objectstore/sqlite/ExternalData.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace {

constexpr int kUuidSize = 16;

/// Reads a column as a value of `type`; absent if the column holds another kind of value.
void readColumn(sqlite3_stmt* row, int column, AttributeType type, RowBuilder& builder,
                std::size_t slot) {
  const int stored = sqlite3_column_type(row, column);
  if (stored == SQLITE_NULL) return;
  const bool isNumber = stored == SQLITE_INTEGER || stored == SQLITE_FLOAT;
  switch (type) {
    case AttributeType::kInteger16:
    case AttributeType::kInteger32:
    case AttributeType::kInteger64:
      if (isNumber) builder.setInteger(slot, sqlite3_column_int64(row, column));
      return;
    case AttributeType::kBoolean:
      if (isNumber) builder.setInteger(slot, sqlite3_column_double(row, column) != 0);
      return;
    case AttributeType::kFloat:
      if (isNumber) {
        builder.setReal(slot, double{static_cast<float>(sqlite3_column_double(row, column))});
      }
      return;
    case AttributeType::kDouble:
    case AttributeType::kDecimal:
    case AttributeType::kDate:
      if (isNumber) builder.setReal(slot, sqlite3_column_double(row, column));
      return;
    case AttributeType::kString:
    case AttributeType::kUri:
      if (stored == SQLITE_BLOB) return;
      if (const auto* text = sqlite3_column_text(row, column)) {
        builder.setText(slot, {reinterpret_cast<const char*>(text),
                               static_cast<std::size_t>(sqlite3_column_bytes(row, column))});
      }
      return;
    case AttributeType::kUuid:
      if (stored == SQLITE_BLOB && sqlite3_column_bytes(row, column) == kUuidSize) {
        builder.setText(slot,
                        {static_cast<const char*>(sqlite3_column_blob(row, column)), kUuidSize});
      }
      return;
    case AttributeType::kBinary:
    case AttributeType::kTransformable:
      return;
  }
}

RowSnapshot readRow(sqlite3_stmt* row, const RowKind& kind, RowBuilder& builder) {
  const auto& attributes = kind.stored->entity->attributes;
  for (std::size_t slot = 0; slot < kind.columnOfSlot.size(); ++slot) {
    const int column = kind.columnOfSlot[slot];
    if (column < 0) continue;
    if (slot < attributes.size()) {
      readColumn(row, column, attributes[slot].type, builder, slot);
    } else if (sqlite3_column_type(row, column) == SQLITE_INTEGER) {
      builder.setInteger(slot, sqlite3_column_int64(row, column));
    }
  }
  return builder.finish(sqlite3_column_int64(row, 2));
}

}  // namespace

StoreReader::Query StoreReader::queryForRequest(const FetchRequest& request,
                                                const EntityDescription& entity) {
  Query query;
  query.entity = &entity;
  const auto& columns = entities_.stored(entity).columns;
  const auto columnOf = [&](const std::string& key) {
    const auto slot = entity.slotOfAttribute(key);
    if (!slot) {
      failStore(StoreErrorCode::kInvalidRequest, entity.name + " has no attribute \"" + key + "\"");
    }
    // Without a column, the attribute is absent in every row.
    return columns[*slot].empty() ? std::string("NULL") : sqlName(columns[*slot]);
  };
  if (request.predicate) {
    const auto& predicate = *request.predicate;
    query.condition = columnOf(predicate.key);
    const auto type = entity.attribute(predicate.key)->type;
    const auto value = coercedValue(type, predicate.value);
    if (predicate.op == Predicate::Operator::kIsNil) {
      query.condition += " IS NULL";
    } else if (!value || isReadOnDemand(type)) {
      failStore(StoreErrorCode::kInvalidRequest,
                "\"" + predicate.key + "\" cannot be compared with such a value");
    } else {
      query.condition += predicate.op == Predicate::Operator::kEqual      ? " = ?"
                         : predicate.op == Predicate::Operator::kLessThan ? " < ?"
                                                                          : " >= ?";
      query.values.push_back(*value);
    }
  }
  query.order.clear();
  for (const auto& descriptor : request.sortDescriptors) {
    query.order += columnOf(descriptor.key) + (descriptor.ascending ? ", " : " DESC, ");
  }
  query.order += "Z_PK";
  return query;
}

std::string StoreReader::source(const Query& query) {
  const std::string& filter = entities_.selection(*query.entity).filter;
  std::string sql = " FROM " + sqlName(entities_.stored(*query.entity).table);
  if (!filter.empty()) sql += " WHERE " + filter;
  if (!query.condition.empty()) sql += (filter.empty() ? " WHERE " : " AND ") + query.condition;
  return sql;
}

Statement StoreReader::statement(const std::string& sql, const Query& query) {
  auto statement = connection_.statement(sql);
  for (const auto& value : query.values) statement.bindValue(value);
  return statement;
}

void StoreReader::rows(const Query& query, const RowReceiver& receive) {
  if (!entities_.stored(*query.entity).hasTable) return;
  const Selection& selection = entities_.selection(*query.entity);
  std::string sql = "SELECT " + selection.columns + source(query) + " ORDER BY " + query.order;
  if (query.limit > 0) sql += " LIMIT " + std::to_string(query.limit);
  auto rows = statement(sql, query);
  const RowKind* kind = nullptr;
  std::int64_t kindsNumber = 0;
  std::optional<RowBuilder> builder;
  while (rows.next()) {
    const std::int64_t key = rows.integer(0);
    const std::int64_t number = rows.integer(1);
    // Valid keys begin at 1.
    if (key <= 0) continue;
    if (!kind || number != kindsNumber) {
      const auto found = selection.kinds.find(number);
      kind = found == selection.kinds.end() ? &selection.ownKind : &found->second;
      kindsNumber = number;
      builder.emplace(kind->columnOfSlot.size());
    }
    const bool wantsMore = receive({kind->stored->entity, kind->idPrototype.withPrimaryKey(key),
                                    readRow(rows.handle(), *kind, *builder)});
    if (!wantsMore) return;
  }
}

std::vector<std::int64_t> StoreReader::keys(const Query& query) {
  std::vector<std::int64_t> result;
  if (!entities_.stored(*query.entity).hasTable) return result;
  auto rows = statement("SELECT Z_PK" + source(query), query);
  while (rows.next()) result.push_back(rows.integer(0));
  return result;
}

std::size_t StoreReader::count(const Query& query) {
  if (!entities_.stored(*query.entity).hasTable) return 0;
  auto rows = statement("SELECT count(*)" + source(query), query);
  return rows.next() ? static_cast<std::size_t>(rows.integer(0)) : 0;
}

Value StoreReader::bytes(const EntityDescription& entity, std::size_t slot, std::int64_t key,
                         const std::filesystem::path& storeUrl) {
  const StoredEntity& stored = entities_.stored(entity);
  if (stored.columns[slot].empty()) return {};
  const std::string column = sqlName(stored.columns[slot]);
  auto row = connection_.statement("SELECT " + column + " FROM " + sqlName(stored.table) +
                                   " WHERE Z_PK = ? AND typeof(" + column + ") = 'blob'");
  row.bind(key);
  if (!row.next()) return {};
  const auto content = row.bytes(0);
  if (!entity.attributes[slot].storesExternally) {
    return std::vector<std::byte>(content.begin(), content.end());
  }
  auto value = unwrappedBytes(content, storeUrl);
  return value ? Value(std::move(*value)) : Value();
}

}  // namespace vantrel
