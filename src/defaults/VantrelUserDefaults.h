#pragma once

#include "platform/system/UserDefaults.h"

namespace vantrel {

/// The settings that the widget and the main application share in the application group.
/// Thread-safe.
class VantrelUserDefaults {
 public:
  /// Returns the same object at each call. If there is no group container, its values are kept in
  /// memory only.
  static UserDefaults& vantrelUserDefaults();
  /// Whether the standard settings have been copied into the group.
  static bool hasMigratedDefault();
  /// Copies the standard settings into the group, overwriting equal keys, once per group container.
  /// If they cannot be read, logs the error; the next call tries again. The misspelt name is part
  /// of the interface.
  static void migrateUserDefaultsIfNeccessary();
};

}  // namespace vantrel
