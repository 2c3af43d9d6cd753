#include "objectstore/sqlite/StoreError.h"

#include <sqlite3.h>

#include <cerrno>
#include <utility>

namespace vantrel {

Error storeError(StoreErrorCode code, std::string description,
                 std::map<std::string, std::string> userInfo) {
  return {std::string(kObjectStoreErrorDomain), static_cast<int>(code), std::move(description),
          std::move(userInfo)};
}

std::optional<StoreErrorCode> storeErrorCode(const Error& error) {
  if (error.domain != kObjectStoreErrorDomain) return std::nullopt;
  return static_cast<StoreErrorCode>(error.code);
}

void failStore(StoreErrorCode code, std::string description,
               std::map<std::string, std::string> userInfo) {
  throw StoreFailure{storeError(code, std::move(description), std::move(userInfo)), 0};
}

Error errorFromSqlite(int resultCode, int systemError) {
  const std::map<std::string, std::string> userInfo = {
      {"sqliteResultCode", std::to_string(resultCode)}};
  const auto make = [&](StoreErrorCode code, const char* description) {
    return storeError(code, description, userInfo);
  };
  switch (resultCode & 0xff) {
    case SQLITE_NOTADB:
      return make(StoreErrorCode::kNotAStore, "the file is not a store");
    case SQLITE_CORRUPT:
    case SQLITE_FORMAT:
      return make(StoreErrorCode::kDamaged, "the store is damaged");
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return make(StoreErrorCode::kLocked, "the store is locked by another program");
    case SQLITE_FULL:
      return make(StoreErrorCode::kDiskFull, "the disk is full");
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return make(StoreErrorCode::kPermission, "the store cannot be written: permission denied");
    case SQLITE_CONSTRAINT:
      return make(StoreErrorCode::kDuplicate, "the store already has a record with this value");
    case SQLITE_ERROR:
    case SQLITE_MISMATCH:
    case SQLITE_RANGE:
      return make(StoreErrorCode::kDamaged, "the store's tables are damaged");
    case SQLITE_CANTOPEN:
      if (systemError == EACCES || systemError == EROFS || systemError == EPERM) {
        return make(StoreErrorCode::kPermission, "the store cannot be opened: permission denied");
      }
      return make(StoreErrorCode::kInputOutput, "the store cannot be opened");
    default:
      // SQLite reports no errno for a failed extension of the shared memory.
      if (systemError == ENOSPC || systemError == EDQUOT || resultCode == SQLITE_IOERR_SHMSIZE) {
        return make(StoreErrorCode::kDiskFull, "the disk is full");
      }
      return make(StoreErrorCode::kInputOutput, "reading or writing the store failed");
  }
}

}  // namespace vantrel
