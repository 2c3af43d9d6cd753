#include "cli/ExitCode.h"

#include <string_view>

#include "objectstore/StoreError.h"

namespace vantrel::cli {

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

}  // namespace

Error failure(ExitCode code, const std::string& what, const std::string& why) {
  return {std::string(kCommandDomain), code, what + ": " + why, {}};
}

ExitCode exitCodeForError(const Error& error) {
  if (error.domain == kCommandDomain) return static_cast<ExitCode>(error.code);
  if (const auto code = storeErrorCode(error)) return exitCodeForStoreError(*code);
  return kExitBadData;
}

}  // namespace vantrel::cli
