#include "objectstore/sqlite/StoreReader.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include <algorithm>
#include <type_traits>

#include "objectstore/model/AttributeValues.h"
#include "objectstore/sqlite/ExternalData.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace {

/// A running statement: lets go of the store when it goes out of scope.
class Rows {
 public:
  Rows(StoreConnection& connection, const std::string& sql, const std::vector<Value>& values)
      : connection_(connection), statement_(connection.reader(sql)) {
    for (const auto& value : values) bind(value);
  }
  ~Rows() { sqlite3_reset(statement_); }
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  bool next() {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    throw SQLite::Exception(connection_.database().getHandle(), code);
  }
  sqlite3_stmt* statement() const { return statement_; }

 private:
  void bind(const Value& value) {
    const int index = ++bound_;
    std::visit(
        [&](const auto& content) {
          using T = std::decay_t<decltype(content)>;
          if constexpr (std::is_same_v<T, std::int64_t>) {
            sqlite3_bind_int64(statement_, index, content);
          } else if constexpr (std::is_same_v<T, double>) {
            sqlite3_bind_double(statement_, index, content);
          } else if constexpr (std::is_same_v<T, Date>) {
            sqlite3_bind_double(statement_, index, content.timeIntervalSinceReferenceDate());
          } else if constexpr (std::is_same_v<T, std::string>) {
            sqlite3_bind_text64(statement_, index, content.data(), content.size(), SQLITE_STATIC,
                                SQLITE_UTF8);
          } else if constexpr (std::is_same_v<T, std::vector<std::byte>>) {
            sqlite3_bind_blob64(statement_, index, content.data(), content.size(), SQLITE_STATIC);
          }
        },
        value);
  }

  StoreConnection& connection_;
  sqlite3_stmt* statement_;
  int bound_ = 0;
};

std::string_view textOfColumn(sqlite3_stmt* row, int column) {
  const void* bytes = sqlite3_column_blob(row, column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
  return {static_cast<const char*>(bytes), bytes ? size : 0};
}

constexpr int kUuidSize = 16;

/// Reads a column as its attribute's kind; what cannot be taken for it reads absent.
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
        builder.setText(slot, textOfColumn(row, column));
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

std::vector<std::byte> bytesOf(std::string_view text) {
  const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
  return {bytes, bytes + text.size()};
}

}  // namespace

StoreReader::Query StoreReader::queryForRequest(const FetchRequest& request,
                                                const EntityDescription& entity) {
  Query query;
  query.entity = &entity;
  const auto& columns = entities_.stored(entity).columns;
  const auto columnOf = [&](const std::string& key) {
    const auto slot = slotOfAttribute(entity, key);
    if (!slot) {
      failStore(StoreErrorCode::kInvalidRequest, entity.name + " has no attribute \"" + key + "\"");
    }
    // What the store has no column for is absent in every row.
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
      query.condition += predicate.op == Predicate::Operator::kEqual ? " = ?" : " >= ?";
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

void StoreReader::rows(const Query& query, const RowReceiver& receive) {
  if (!entities_.stored(*query.entity).hasTable) return;
  const Selection& selection = entities_.selection(*query.entity);
  std::string sql = "SELECT " + selection.columns + source(query) + " ORDER BY " + query.order;
  std::vector<Value> values = query.values;
  if (query.limit > 0) {
    sql += " LIMIT ?";
    values.emplace_back(static_cast<std::int64_t>(query.limit));
  }
  Rows rows(connection_, sql, values);
  const RowKind* kind = nullptr;
  std::int64_t kindsNumber = 0;
  std::optional<RowBuilder> builder;
  while (rows.next()) {
    sqlite3_stmt* row = rows.statement();
    const std::int64_t key = sqlite3_column_int64(row, 0);
    const std::int64_t number = sqlite3_column_int64(row, 1);
    // Keys begin at 1; others cannot be named.
    if (key <= 0) continue;
    if (!kind || number != kindsNumber) {
      const auto found = selection.kinds.find(number);
      kind = found == selection.kinds.end() ? &selection.ownKind : &found->second;
      kindsNumber = number;
      builder.emplace(kind->columnOfSlot.size());
    }
    receive({kind->stored->entity, kind->idPrototype.withPrimaryKey(key),
             readRow(row, *kind, *builder)});
  }
}

std::vector<std::int64_t> StoreReader::keys(const Query& query) {
  std::vector<std::int64_t> result;
  if (!entities_.stored(*query.entity).hasTable) return result;
  Rows rows(connection_, "SELECT Z_PK" + source(query), query.values);
  while (rows.next()) result.push_back(sqlite3_column_int64(rows.statement(), 0));
  return result;
}

std::size_t StoreReader::count(const Query& query) {
  if (!entities_.stored(*query.entity).hasTable) return 0;
  Rows rows(connection_, "SELECT count(*)" + source(query), query.values);
  return rows.next() ? static_cast<std::size_t>(sqlite3_column_int64(rows.statement(), 0)) : 0;
}

Value StoreReader::bytes(const EntityDescription& entity, std::size_t slot, std::int64_t key,
                         const std::filesystem::path& storeUrl) {
  const StoredEntity& stored = entities_.stored(entity);
  if (stored.columns[slot].empty()) return {};
  Rows rows(connection_,
            "SELECT " + sqlName(stored.columns[slot]) + " FROM " + sqlName(stored.table) +
                " WHERE Z_PK = ?",
            {key});
  if (!rows.next() || sqlite3_column_type(rows.statement(), 0) != SQLITE_BLOB) return {};
  const std::string_view content = textOfColumn(rows.statement(), 0);
  if (!entity.attributes[slot].storesExternally) return bytesOf(content);
  const auto value = unwrappedBytes(content, storeUrl);
  return value ? Value(bytesOf(*value)) : Value();
}

}  // namespace vantrel
