#include "store/Database.h"

#include <system_error>

#include "base/Log.h"
#include "base/StringFormat.h"
#include "objectstore/sqlite/SqliteStore.h"
#include "objectstore/sqlite/StoreError.h"
#include "platform/system/Bundle.h"
#include "platform/system/Paths.h"
#include "store/CustomCamera.h"
#include "store/CustomPoi.h"
#include "store/Image.h"
#include "store/Planning.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModelName = "Vantrel";
constexpr std::string_view kStaticModelName = "VantrelStatic";
constexpr std::string_view kStoreFile = "Vantrel.sqlite";
constexpr std::string_view kErrorTable = "Common";

template <typename Class>
void setClass(ManagedObjectModel& model) {
  if (auto* entity = model.entityNamed(Class::kEntityName)) {
    entity->makeObject = [] { return std::make_shared<Class>(); };
  }
}

/// Returns an empty model and sets `failure` if the model cannot be loaded.
std::shared_ptr<ManagedObjectModel> loadModel(const std::optional<fs::path>& url,
                                              std::string_view name,
                                              std::optional<Error>& failure) {
  if (!url) {
    failure = storeError(StoreErrorCode::kMissing,
                         "the program's resources lack the model \"" + std::string(name) + "\"");
    return std::make_shared<ManagedObjectModel>();
  }
  auto model = ManagedObjectModel::modelWithContentsOfURL(*url);
  if (!model) failure = model.error();
  return std::make_shared<ManagedObjectModel>(model ? std::move(*model) : ManagedObjectModel());
}

/// Returns the error and its user information for the log.
std::pair<std::string, std::string> describe(const Error& error) {
  std::string userInfo;
  for (const auto& [key, value] : error.userInfo) {
    if (!userInfo.empty()) userInfo += ", ";
    userInfo.append(key).append(" = ").append(value);
  }
  return {error.domain + " " + std::to_string(error.code) + ": " + error.localizedDescription,
          "{" + userInfo + "}"};
}

}  // namespace

Database& Database::sharedInstance() {
  static Database database;
  return database;
}

std::optional<fs::path> Database::applicationDocumentsDirectory() const {
  return paths::documentDirectory();
}

std::optional<fs::path> Database::groupApplicationDocumentDirectory() const {
  return paths::groupContainer();
}

std::optional<fs::path> Database::groupStoreURL() const {
  const auto container = groupApplicationDocumentDirectory();
  return container ? std::optional(*container / kStoreFile) : std::nullopt;
}

std::optional<fs::path> Database::modelURL() const {
  const Bundle& bundle = Bundle::mainBundle();
  const auto versions = bundle.urlForResource(kModelName, "momd");
  return versions ? versions : bundle.urlForResource(kModelName, "mom");
}

std::shared_ptr<ManagedObjectModel> Database::managedObjectModel() {
  if (managedObjectModel_) return managedObjectModel_;
  managedObjectModel_ = loadModel(modelURL(), kModelName, modelFailure_);
  setClass<CustomCamera>(*managedObjectModel_);
  setClass<CustomPoi>(*managedObjectModel_);
  setClass<Image>(*managedObjectModel_);
  setClass<Planning>(*managedObjectModel_);
  return managedObjectModel_;
}

std::shared_ptr<ManagedObjectModel> Database::staticManagedObjectModel() {
  if (!staticManagedObjectModel_) {
    const auto url = Bundle::mainBundle().urlForResource(kStaticModelName, "momd");
    staticManagedObjectModel_ = loadModel(url, kStaticModelName, staticModelFailure_);
  }
  return staticManagedObjectModel_;
}

StoreOptions Database::mainStoreOptions() {
  StoreOptions options;
  options.migratePersistentStoresAutomatically = true;
  options.inferMappingModelAutomatically = true;
  // The attributes that the list of plans needs: the phone's model may have others and other
  // hashes.
  options.requiredAttributes = {{Planning::kEntityName, {"name", "date", "timezone"}}};
  return options;
}

std::shared_ptr<PersistentStoreCoordinator> Database::persistentStoreCoordinator() {
  if (persistentStoreCoordinator_) return persistentStoreCoordinator_;
  const auto url = groupStoreURL();
  std::error_code error;
  if (url && !fs::exists(*url, error)) paths::createPrivateDirectory(url->parent_path());
  persistentStoreCoordinator_ = std::make_shared<PersistentStoreCoordinator>(managedObjectModel());
  addStore(*persistentStoreCoordinator_, url, mainStoreOptions(), modelFailure_,
           "persistent_store");
  return persistentStoreCoordinator_;
}

std::shared_ptr<PersistentStoreCoordinator> Database::staticPersistentStoreCoordinator() {
  if (staticPersistentStoreCoordinator_) return staticPersistentStoreCoordinator_;
  staticPersistentStoreCoordinator_ =
      std::make_shared<PersistentStoreCoordinator>(staticManagedObjectModel());
  StoreOptions options;
  options.readOnly = true;
  const auto url = Bundle::mainBundle().root() / (std::string(kStaticModelName) + ".sqlite");
  addStore(*staticPersistentStoreCoordinator_, url, options, staticModelFailure_,
           "static_persistent_store");
  return staticPersistentStoreCoordinator_;
}

void Database::addStore(PersistentStoreCoordinator& coordinator, const std::optional<fs::path>& url,
                        const StoreOptions& options, const std::optional<Error>& modelFailure,
                        const std::string& textsName) {
  if (modelFailure) {
    coordinator.setStoreFailure(*modelFailure);
  } else if (coordinator.addPersistentStore(url, options)) {
    return;
  }
  const Error& error = coordinator.storeFailure();
  const auto [text, userInfo] = describe(error);
  logLine(stringWithFormat("Unresolved error %@, %@", {text, userInfo}));
  const auto receiver = delegate();
  if (!receiver) return;
  const auto localized = [&](const char* key) {
    return Bundle::mainBundle().localizedString(textsName + key, "", kErrorTable);
  };
  receiver->databasePersistentStoreCoordinatorDidGetError(
      stringWithFormat(localized("_unresolved_error_message_ios"), {error.localizedDescription}),
      localized("_unresolved_error_title"));
}

ManagedObjectContext* Database::managedObjectContext() {
  if (!managedObjectContext_) {
    translatePrePopulatedStore_ = false;
    managedObjectContext_ = std::make_unique<ManagedObjectContext>(persistentStoreCoordinator());
  }
  return managedObjectContext_.get();
}

ManagedObjectContext* Database::staticManagedObjectContext() {
  if (!staticManagedObjectContext_) {
    staticManagedObjectContext_ =
        std::make_unique<ManagedObjectContext>(staticPersistentStoreCoordinator());
  }
  return staticManagedObjectContext_.get();
}

}  // namespace vantrel
