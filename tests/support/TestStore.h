#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/SqliteStore.h"
#include "store/Planning.h"
#include "support/Guards.h"

namespace vantrel::test {

/// The main model of the bundle, with the classes of plans and cameras.
std::shared_ptr<ManagedObjectModel> mainModel();
/// The same in an older version, as the program had it then.
std::shared_ptr<ManagedObjectModel> mainModelOfVersion(const std::string& version);

/// How the program opens its main store.
StoreOptions mainOptions();

/// One program's view of a store file: what stands between two of them is only the file.
struct OpenStore {
  explicit OpenStore(const std::filesystem::path& path, const StoreOptions& options = mainOptions(),
                     const std::shared_ptr<ManagedObjectModel>& model = mainModel());

  std::shared_ptr<Planning> insertPlan(const std::string& name, double date);
  /// "a b c": the names of the plans that a request finds; the error's description when it fails.
  std::string names(const FetchRequest& request = {.entityName = "Planning"});
  std::shared_ptr<Planning> planNamed(const std::string& name);

  std::shared_ptr<PersistentStoreCoordinator> coordinator;
  Expected<SqliteStore*> store;
  ManagedObjectContext context;
};

/// What the sqlite3 program says of a file; its messages when it fails.
std::string sqlite(const std::filesystem::path& file, const std::string& sql);

}  // namespace vantrel::test
