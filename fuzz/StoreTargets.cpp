#include <sqlite3.h>

#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

#include "Scratch.h"
#include "Targets.h"
#include "objectstore/ManagedObjectContext.h"
#include "objectstore/sqlite/SqliteStore.h"
#include "platform/system/Bundle.h"
#include "store/Database.h"
#include "store/Planning.h"

namespace vantrel::fuzz {

namespace {

constexpr const char* kFileName = "Vantrel.sqlite";

std::shared_ptr<ManagedObjectModel> mainModel() {
  static const auto model = [] {
    const auto momd = Bundle::mainBundle().urlForResource("Vantrel", "momd");
    require(momd.has_value(), "the bundle exists");
    auto read = ManagedObjectModel::modelWithContentsOfURL(*momd);
    require(read.has_value(), "the model can be read");
    read->entityNamed("Planning")->makeObject = [] { return std::make_shared<Planning>(); };
    return std::make_shared<ManagedObjectModel>(std::move(*read));
  }();
  return model;
}

/// Reads all objects of the store, then changes and saves it.
void useStore(const std::filesystem::path& file, bool readOnly) {
  const auto coordinator = std::make_shared<PersistentStoreCoordinator>(mainModel());
  StoreOptions options = Database::mainStoreOptions();
  options.readOnly = readOnly;
  if (!coordinator->addPersistentStore(file, options)) return;
  ManagedObjectContext context(coordinator);
  for (const auto& entity : mainModel()->entities()) {
    FetchRequest request;
    request.entityName = entity.name;
    const auto objects = context.executeFetchRequest(request);
    if (!objects) continue;
    for (const auto& object : *objects) {
      for (const auto& attribute : entity.attributes) object->valueForKey(attribute.name);
      if (const auto plan = std::dynamic_pointer_cast<Planning>(object)) plan->imageCount();
    }
    if (entity.name == "Planning") context.countsOfRelatedObjects(*objects, "images");
  }
  FetchRequest next;
  next.entityName = "Planning";
  next.predicate = Predicate::greaterThanOrEqual("date", Date(0));
  next.sortDescriptors = {{"date", true}};
  next.fetchLimit = 5;
  const auto plans = context.executeFetchRequest(next);
  require(!plans || plans->size() <= 5, "a fetch keeps its limit");
  if (readOnly) return;
  if (plans && !plans->empty()) context.deleteObject(plans->front());
  context.insertNewObject("Planning");
  context.save();
}

/// Returns the bytes of a valid store with two plans.
const std::string& soundStore() {
  static const std::string bytes = [] {
    const Scratch scratch;
    const auto file = scratch.folder() / kFileName;
    {
      const auto coordinator = std::make_shared<PersistentStoreCoordinator>(mainModel());
      require(coordinator->addPersistentStore(file, {}).has_value(), "a store can be created");
      ManagedObjectContext context(coordinator);
      for (const char* name : {"one", "two"}) {
        const auto plan = std::static_pointer_cast<Planning>(context.insertNewObject("Planning"));
        plan->setName(name);
        plan->setDate(Date(800'000'000));
      }
      require(context.save().has_value(), "plans can be saved");
    }
    std::ifstream stream(file, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(stream)), {});
  }();
  return bytes;
}

/// Returns consecutive values of the input, then zeros.
class Reader {
 public:
  explicit Reader(Bytes input) : rest_(input) {}
  bool isEmpty() const { return rest_.empty(); }
  template <typename T>
  T take() {
    T value{};
    const auto bytes = takeBytes(sizeof value);
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  Bytes takeBytes(std::size_t count) {
    const auto taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

 private:
  Bytes rest_;
};

void bindNext(sqlite3_stmt* statement, int index, Reader& reader) {
  switch (reader.take<std::uint8_t>() % 5) {
    case 0:
      sqlite3_bind_null(statement, index);
      break;
    case 1:
      sqlite3_bind_int64(statement, index, reader.take<std::int64_t>());
      break;
    case 2:
      sqlite3_bind_double(statement, index, reader.take<double>());
      break;
    default: {
      const bool isText = reader.take<std::uint8_t>() % 2 == 0;
      const auto bytes = reader.takeBytes(reader.take<std::uint8_t>());
      const int size = static_cast<int>(bytes.size());
      const char* data = bytes.empty() ? "" : textOf(bytes).data();
      if (isText) {
        sqlite3_bind_text(statement, index, data, size, SQLITE_TRANSIENT);
      } else {
        sqlite3_bind_blob(statement, index, data, size, SQLITE_TRANSIENT);
      }
    }
  }
}

}  // namespace

/// The input is a file, or if its first byte is 0, pairs of an offset and a byte to overwrite in a
/// valid file.
void storeFile(Bytes input) {
  static const Scratch scratch;
  std::string content(textOf(input));
  if (!input.empty() && input.front() == std::byte{0}) {
    content = soundStore();
    Reader reader(input.subspan(1));
    while (!reader.isEmpty()) {
      const auto place = reader.take<std::uint32_t>() % content.size();
      content[place] = reader.take<char>();
    }
  }
  const auto bytes = std::as_bytes(std::span(content));
  useStore(scratch.fileWith(kFileName, bytes), true);
  require(std::filesystem::file_size(scratch.folder() / kFileName) == content.size(),
          "reading changes nothing");
  useStore(scratch.fileWith(kFileName, bytes), false);
}

/// Valid SQLite, hostile values: the input is pairs of a column of a valid store and its value.
void storeContent(Bytes input) {
  static constexpr std::pair<const char*, const char*> kCells[] = {
      {"ZPLANNING", "Z_ENT"},     {"ZPLANNING", "Z_OPT"},     {"ZPLANNING", "Z_PK"},
      {"ZPLANNING", "ZDATE"},     {"ZPLANNING", "ZNAME"},     {"ZPLANNING", "ZTIMEZONE"},
      {"ZPLANNING", "ZNOTES"},    {"ZPLANNING", "ZLATITUDE"}, {"ZPLANNING", "ZUNIQUEIDENTIFIER"},
      {"Z_PRIMARYKEY", "Z_ENT"},  {"Z_PRIMARYKEY", "Z_NAME"}, {"Z_PRIMARYKEY", "Z_MAX"},
      {"Z_METADATA", "Z_PLIST"},  {"Z_METADATA", "Z_UUID"},   {"Z_METADATA", "Z_VERSION"},
      {"Z_PRIMARYKEY", "Z_SUPER"}};
  static const Scratch scratch;
  const auto file = scratch.fileWith(kFileName, std::as_bytes(std::span(soundStore())));
  sqlite3* database = nullptr;
  require(sqlite3_open(file.c_str(), &database) == SQLITE_OK, "a valid store opens");
  Reader reader(input);
  while (!reader.isEmpty()) {
    const auto& [table, column] = kCells[reader.take<std::uint8_t>() % std::size(kCells)];
    const std::string sql = std::string("UPDATE ") + table + " SET " + column +
                            " = ?1 WHERE rowid = (SELECT max(rowid) FROM " + table + ")";
    sqlite3_stmt* statement = nullptr;
    require(sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK,
            "the column can be updated");
    bindNext(statement, 1, reader);
    sqlite3_step(statement);
    sqlite3_finalize(statement);
  }
  sqlite3_close(database);
  useStore(file, true);
  useStore(file, false);
}

}  // namespace vantrel::fuzz
