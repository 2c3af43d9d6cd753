#pragma once

#include <optional>
#include <string>

#include "base/Error.h"
#include "base/LocationCoordinate2D.h"

namespace vantrel {

/// The command line and environment of vantrel-lookup.
struct LookupOptions {
  enum class Subject { kAltitude, kTimeZone };

  Subject subject = Subject::kAltitude;
  LocationCoordinate2D place;
  bool google = false;
  std::optional<std::string> username;
  std::optional<std::string> keyFile;  ///< "-" is standard input.
  /// Replaces the address of the service; https, or http to this machine. $VANTREL_LOOKUP_ADDRESS.
  std::optional<std::string> address;
  /// Seconds to wait for an answer. $VANTREL_LOOKUP_WAIT.
  double wait = 20;

  /// Fills `options`, or returns the exit code (after --help, --version or a usage error).
  static std::optional<int> parse(int argc, char** argv, LookupOptions& options);
  /// Reads `address` and `wait`. Fails with kExitUsage if one is invalid.
  Expected<void> readEnvironment();
};

}  // namespace vantrel
