#include "support/TestStore.h"

#include <sqlite3.h>

#include "platform/system/Bundle.h"
#include "store/CustomCamera.h"
#include "store/Database.h"

namespace vantrel::test {

namespace {

std::shared_ptr<ManagedObjectModel> withClasses(ManagedObjectModel model) {
  auto shared = std::make_shared<ManagedObjectModel>(std::move(model));
  if (auto* planning = shared->entityNamed("Planning")) {
    planning->makeObject = [] { return std::make_shared<Planning>(); };
  }
  if (auto* camera = shared->entityNamed("CustomCamera")) {
    camera->makeObject = [] { return std::make_shared<CustomCamera>(); };
  }
  return shared;
}

std::filesystem::path mainMomd() {
  return *Bundle::mainBundle().urlForResource("Vantrel", "momd");
}

}  // namespace

std::shared_ptr<ManagedObjectModel> mainModel() {
  return withClasses(*ManagedObjectModel::modelWithContentsOfURL(mainMomd()));
}

std::shared_ptr<ManagedObjectModel> mainModelOfVersion(const std::string& version) {
  const auto hashes = ManagedObjectModel::allVersionHashes(mainMomd()).at("Vantrel" + version);
  auto model = withClasses(
      *ManagedObjectModel::modelWithContentsOfURL(mainMomd() / ("Vantrel" + version + ".mom")));
  for (const auto& [name, hash] : hashes) model->entityNamed(name)->versionHash = hash;
  return model;
}

StoreOptions mainOptions() {
  return Database::mainStoreOptions();
}

StoreOptions readOnlyOptions() {
  StoreOptions options = mainOptions();
  options.readOnly = true;
  return options;
}

OpenStore::OpenStore(const std::filesystem::path& path, const StoreOptions& options,
                     const std::shared_ptr<ManagedObjectModel>& model)
    : coordinator(std::make_shared<PersistentStoreCoordinator>(model)),
      store(coordinator->addPersistentStore(path, options)),
      context(coordinator) {}

std::shared_ptr<Planning> OpenStore::insertPlan(const std::string& name, double date) {
  auto plan = std::dynamic_pointer_cast<Planning>(context.insertNewObject("Planning"));
  plan->setName(name);
  plan->setDate(Date(date));
  return plan;
}

std::string OpenStore::names(const FetchRequest& request) {
  const auto objects = context.executeFetchRequest(request);
  if (!objects) return objects.error().localizedDescription;
  std::string names;
  for (const auto& object : *objects) {
    const Value name = object->valueForKey("name");
    const auto* text = std::get_if<std::string>(&name);
    names += (names.empty() ? "" : " ") + (text ? *text : std::string("-"));
  }
  return names;
}

std::shared_ptr<Planning> OpenStore::planNamed(const std::string& name) {
  const auto objects = context.executeFetchRequest(
      {.entityName = "Planning", .predicate = Predicate::equal("name", name)});
  return objects && !objects->empty() ? std::dynamic_pointer_cast<Planning>(objects->front())
                                      : nullptr;
}

std::optional<StoreErrorCode> openingError(const std::filesystem::path& file,
                                           const StoreOptions& options) {
  return codeOf(OpenStore(file, options).store);
}

OtherWriter::OtherWriter(const std::filesystem::path& file, const char* sql) {
  EXPECT_EQ(sqlite3_open(file.c_str(), &database_), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr), SQLITE_OK);
}

OtherWriter::~OtherWriter() {
  sqlite3_close(database_);
}

std::string sqlite(const std::filesystem::path& file, const std::string& sql) {
  const auto result = runProgram({"sqlite3", "-batch", file.string(), sql});
  std::string text = result.exitCode == 0 ? result.output : result.errors;
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

std::string pythonSays(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "python3");
  const auto result = runProgram(arguments);
  return result.output + result.errors;
}

void StoreTest::savePlans(const std::vector<std::pair<std::string, double>>& namesAndDates) {
  OpenStore store(file_);
  for (const auto& [name, date] : namesAndDates) store.insertPlan(name, date);
  ASSERT_TRUE(store.context.save());
}

void StoreTest::saveFortyPlans() {
  OpenStore store(file_);
  for (int day = 0; day < 40; ++day) {
    store.insertPlan("plan" + std::to_string(day), day)->setNotes(std::string(300, 'n'));
  }
  ASSERT_TRUE(store.context.save());
}

std::filesystem::path StoreTest::copyOfFile() {
  const auto copy = directory_ / "Copy.sqlite";
  for (const char* suffix : {"-wal", "-shm"}) std::filesystem::remove(copy.string() + suffix);
  std::filesystem::copy_file(file_, copy, std::filesystem::copy_options::overwrite_existing);
  return copy;
}

}  // namespace vantrel::test
