#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/model/ManagedObjectModel.h"
#include "objectstore/sqlite/SqliteStore.h"
#include "objectstore/sqlite/StoreError.h"
#include "store/Planning.h"
#include "support/Guards.h"

struct sqlite3;

namespace vantrel::test {

/// The bundle's main model, with the classes of plans and cameras.
std::shared_ptr<ManagedObjectModel> mainModel();
/// An older version of the main model.
std::shared_ptr<ManagedObjectModel> mainModelOfVersion(const std::string& version);

/// The options of the programs' main store.
StoreOptions mainOptions();
StoreOptions readOnlyOptions();

/// An open store file. Two of them for one file share nothing else, as if in two processes.
struct OpenStore {
  explicit OpenStore(const std::filesystem::path& path, const StoreOptions& options = mainOptions(),
                     const std::shared_ptr<ManagedObjectModel>& model = mainModel());

  std::shared_ptr<Planning> insertPlan(const std::string& name, double date);
  /// "a b c": the names of the plans that `request` fetches, or the description of its error.
  std::string names(const FetchRequest& request = {.entityName = "Planning"});
  std::shared_ptr<Planning> planNamed(const std::string& name);

  std::shared_ptr<PersistentStoreCoordinator> coordinator;
  Expected<SqliteStore*> store;
  ManagedObjectContext context;
};

/// `nullopt` if `result` is not an error.
template <typename T>
std::optional<StoreErrorCode> codeOf(const Expected<T>& result) {
  return result ? std::nullopt : storeErrorCode(result.error());
}

/// `nullopt` if the store can be opened.
std::optional<StoreErrorCode> openingError(const std::filesystem::path& file,
                                           const StoreOptions& options = mainOptions());

/// Another connection to a store, with a transaction that is never committed.
class OtherWriter {
 public:
  OtherWriter(const std::filesystem::path& file, const char* sql);
  ~OtherWriter();
  OtherWriter(OtherWriter&&) = delete;

 private:
  sqlite3* database_ = nullptr;
};

/// The output of the program sqlite3, or its messages if it fails.
std::string sqlite(const std::filesystem::path& file, const std::string& sql);
/// The output and the messages of a Python program.
std::string pythonSays(std::vector<std::string> arguments);

/// A temporary folder, and the path of a store in it.
class StoreTest : public ::testing::Test {
 protected:
  void savePlans(const std::vector<std::pair<std::string, double>>& namesAndDates);
  /// "plan0" to "plan39" by date, with texts that make the file ten pages long.
  void saveFortyPlans();
  /// Copies the closed store.
  std::filesystem::path copyOfFile();

  const TemporaryDirectory directory_;
  const std::filesystem::path file_ = directory_ / "Vantrel.sqlite";
};

}  // namespace vantrel::test
