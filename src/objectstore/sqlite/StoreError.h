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
  kMissing = 1,        ///< The file does not exist.
  kNotAStore,          ///< The file is not an object store.
  kDamaged,            ///< Parts of the file cannot be decoded.
  kIncompatible,       ///< Written by another program, and lacks required attributes.
  kNewer,              ///< Written by a newer version.
  kCannotCreate,       ///< The file cannot be created.
  kInputOutput,        ///< The system failed to read or write.
  kDiskFull,           ///< The disk is full; nothing was written.
  kLocked,             ///< Another process held the store for too long; try again.
  kPermission,         ///< The user lacks permission to read or write the file.
  kConflict,           ///< Another process changed the same object since it was read.
  kDeletionDenied,     ///< A "deny" delete rule forbids the deletion.
  kNoPlace,            ///< The store has no table or column for the value.
  kDuplicate,          ///< The value violates a uniqueness constraint of the store.
  kInvalidRequest,     ///< The model lacks the entity or key, or it has another kind.
  kInvalidURI,         ///< Not the URI of an object of this store.
  kUnsettledRelation,  ///< It is unknown how a foreign store keeps a relationship.
};

/// Returns an error of kObjectStoreErrorDomain. `description` is one line, shown to users.
Error storeError(StoreErrorCode code, std::string description,
                 std::map<std::string, std::string> userInfo = {});
/// `nullopt` if the error has another domain.
std::optional<StoreErrorCode> storeErrorCode(const Error& error);

/// Thrown inside the object store; SqliteStore converts it to an `Expected`.
struct StoreFailure {
  Error error;
  int sqliteResultCode = 0;  ///< Extended; 0 if SQLite reported no error.
};
[[noreturn]] void failStore(StoreErrorCode code, std::string description,
                            std::map<std::string, std::string> userInfo = {});

/// Converts a result code of SQLite, extended or not. `systemError` is an errno, 0 if unknown.
Error errorFromSqlite(int resultCode, int systemError = 0);

}  // namespace vantrel
