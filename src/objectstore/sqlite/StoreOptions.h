#pragma once

#include <map>
#include <string>
#include <vector>

namespace vantrel {

/// How a store is added.
struct StoreOptions {
  bool readOnly = false;
  /// Migrate a store written with an older version of the model's bundle.
  bool migratePersistentStoresAutomatically = false;
  bool inferMappingModelAutomatically = false;
  /// SQLite pragmas, set when the store is opened ("journal_mode" = "WAL").
  std::map<std::string, std::string> sqlitePragmas;
  /// What a store of another program must have to be served, attributes by entity. When empty, only
  /// stores that the model's bundle wrote are served.
  std::map<std::string, std::vector<std::string>> requiredAttributes;
};

}  // namespace vantrel
