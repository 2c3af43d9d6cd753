#pragma once

#include <optional>
#include <string>

#include "base/Error.h"
#include "base/LocationCoordinate2D.h"

namespace vantrel {

/// What the command line asks for.
struct LookupOptions {
  enum class Subject { kAltitude, kTimeZone };

  Subject subject = Subject::kAltitude;
  LocationCoordinate2D place;
  bool google = false;
  std::optional<std::string> username;
  std::optional<std::string> keyFile;  ///< "-" is standard input.
  /// Instead of the service's own; https, or http to this machine. $VANTREL_LOOKUP_ADDRESS.
  std::optional<std::string> address;
  /// How long an answer is waited for, in seconds. $VANTREL_LOOKUP_WAIT.
  double wait = 20;

  /// Fills `options`, or gives the exit code to end with at once (help, version, bad usage).
  static std::optional<int> parse(int argc, char** argv, LookupOptions& options);
  /// Takes what the environment says of address and wait.
  Expected<void> readEnvironment();
};

}  // namespace vantrel
