#include "common/ExitCode.h"

#include <cerrno>
#include <string_view>

#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace {

constexpr std::string_view kCommandDomain = "org.vantrel.command";

ExitCode exitCodeForStoreError(StoreErrorCode code) {
  switch (code) {
    case StoreErrorCode::kMissing:
      return kExitMissing;
    case StoreErrorCode::kCannotCreate:
      return kExitCannotCreate;
    case StoreErrorCode::kInputOutput:
    case StoreErrorCode::kDiskFull:
      return kExitInputOutput;
    case StoreErrorCode::kLocked:
    case StoreErrorCode::kConflict:
      return kExitTryAgain;
    case StoreErrorCode::kPermission:
      return kExitPermission;
    case StoreErrorCode::kInvalidRequest:
      return kExitInternal;
    default:
      return kExitBadData;
  }
}

/// Errors of the settings and of output files.
ExitCode exitCodeForErrno(int code) {
  switch (code) {
    case EACCES:
    case EPERM:
      return kExitPermission;
    case EROFS:
    case EISDIR:
    case ENOTDIR:
    case EEXIST:
    case ENOENT:
      return kExitCannotCreate;
    case EAGAIN:
    case ENOLCK:
      return kExitTryAgain;
    default:
      return kExitInputOutput;
  }
}

}  // namespace

Error failure(ExitCode code, const std::string& what, const std::string& why) {
  return {std::string(kCommandDomain), code, what + ": " + why, {}};
}

ExitCode exitCodeForReading(int error) {
  if (error == ENOENT) return kExitMissing;
  return error == EACCES || error == EPERM ? kExitPermission : kExitInputOutput;
}

ExitCode exitCodeForError(const Error& error) {
  if (error.domain == kCommandDomain) return static_cast<ExitCode>(error.code);
  if (const auto code = storeErrorCode(error)) return exitCodeForStoreError(*code);
  if (error.domain == "POSIX") return exitCodeForErrno(error.code);
  return kExitBadData;
}

}  // namespace vantrel
