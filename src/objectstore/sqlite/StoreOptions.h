#pragma once

#include <map>
#include <string>
#include <vector>

namespace vantrel {

/// How to open a store.
struct StoreOptions {
  bool readOnly = false;
  /// Both together: migrate a store that an older version of the model wrote.
  bool migratePersistentStoresAutomatically = false;
  bool inferMappingModelAutomatically = false;
  /// SQLite pragmas to set when the store is opened ("journal_mode" = "WAL"). Not checked.
  std::map<std::string, std::string> sqlitePragmas;
  /// The attributes, by entity, that a foreign store must have. If empty, foreign stores are
  /// rejected.
  std::map<std::string, std::vector<std::string>> requiredAttributes;
};

}  // namespace vantrel
