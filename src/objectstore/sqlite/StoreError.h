#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/Error.h"

namespace vantrel {

inline constexpr std::string_view kObjectStoreErrorDomain = "org.vantrel.objectstore";

/// Codes of kObjectStoreErrorDomain.
enum class StoreErrorCode {
  kMissing = 1,        ///< There is no file to open.
  kNotAStore,          ///< The file is something else.
  kDamaged,            ///< Parts of the file cannot be read as what they should be.
  kIncompatible,       ///< Written by another program, and without what is needed from it.
  kNewer,              ///< Written by a newer version.
  kCannotCreate,       ///< There is no place to make the file.
  kInputOutput,        ///< The system failed to read or write.
  kDiskFull,           ///< Nothing was written.
  kLocked,             ///< Another program held the store for too long; try again.
  kPermission,         ///< The user may not read or write the file.
  kConflict,           ///< Another program changed the same object since it was read.
  kDeletionDenied,     ///< Something that is still needed hangs on the object.
  kNoPlace,            ///< The store has no table or column for the value.
  kDuplicate,          ///< The store keeps a value unique, and it is taken.
  kInvalidRequest,     ///< The model does not have the entity or key, or not of that kind.
  kInvalidURI,         ///< Not the URI of an object of this store.
  kUnsettledRelation,  ///< How a foreign store keeps a relationship cannot be told.
};

/// An error of kObjectStoreErrorDomain; `description` is one line for a person.
Error storeError(StoreErrorCode code, std::string description,
                 std::map<std::string, std::string> userInfo = {});
/// The code of an error; nothing when it is of another domain.
std::optional<StoreErrorCode> storeErrorCode(const Error& error);

/// Carries an error out of a transaction to the border of the object store, where it is caught.
struct StoreFailure {
  Error error;
};
[[noreturn]] void failStore(StoreErrorCode code, std::string description,
                            std::map<std::string, std::string> userInfo = {});

/// The error for a result code of SQLite's (extended or not) and, where known, the system's errno.
Error errorFromSqlite(int resultCode, int systemError = 0);

}  // namespace vantrel
