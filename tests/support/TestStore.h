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

/// The main model of the bundle, with the classes of plans and cameras.
std::shared_ptr<ManagedObjectModel> mainModel();
/// The same in an older version, as the program had it then.
std::shared_ptr<ManagedObjectModel> mainModelOfVersion(const std::string& version);

/// How the program opens its main store, to write or only to read.
StoreOptions mainOptions();
StoreOptions readOnlyOptions();

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

/// Why it failed; nothing when it did not.
template <typename T>
std::optional<StoreErrorCode> codeOf(const Expected<T>& result) {
  return result ? std::nullopt : storeErrorCode(result.error());
}

/// Why a store cannot be opened; nothing when it can.
std::optional<StoreErrorCode> openingError(const std::filesystem::path& file,
                                           const StoreOptions& options = mainOptions());

/// Another connection to a file, in the middle of a change that it never ends.
class OtherWriter {
 public:
  OtherWriter(const std::filesystem::path& file, const char* sql);
  ~OtherWriter();
  OtherWriter(const OtherWriter&) = delete;
  OtherWriter& operator=(const OtherWriter&) = delete;

 private:
  sqlite3* database_ = nullptr;
};

/// What the sqlite3 program says of a file; its messages when it fails.
std::string sqlite(const std::filesystem::path& file, const std::string& sql);
/// What a Python program writes, to either of its outputs.
std::string pythonSays(std::vector<std::string> arguments);

/// A folder with the place of a store in it.
class StoreTest : public ::testing::Test {
 protected:
  void savePlans(const std::vector<std::pair<std::string, double>>& namesAndDates);
  /// "plan0" to "plan39" by date, with texts that make the file ten pages long.
  void saveFortyPlans();
  /// The closed store once more.
  std::filesystem::path copyOfFile();

  const TemporaryDirectory directory_;
  const std::filesystem::path file_ = directory_ / "Vantrel.sqlite";
};

}  // namespace vantrel::test
