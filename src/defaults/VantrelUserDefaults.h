#pragma once

#include "platform/system/UserDefaults.h"

namespace vantrel {

/// The settings that the widget and the main application share through their group. Any thread.
class VantrelUserDefaults {
 public:
  /// One object for the life of the process. Without a group container it is a store of this
  /// process alone.
  static UserDefaults& vantrelUserDefaults();
  /// Whether the program's old settings were copied into the group.
  static bool hasMigratedDefault();
  /// Copies the standard settings into the group, over what is there, once per group container.
  /// Standard settings that cannot be read are told in a log line and copied another time. The
  /// spelling is the one both programs know.
  static void migrateUserDefaultsIfNeccessary();
};

}  // namespace vantrel
