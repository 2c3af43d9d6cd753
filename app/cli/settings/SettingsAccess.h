#pragma once

#include <functional>

#include "base/Error.h"
#include "cli/Console.h"
#include "platform/system/UserDefaults.h"

namespace vantrel::cli {

enum class Suite {
  kShared,    ///< Shared with the widget and the main application.
  kStandard,  ///< Of this program.
};

/// Returns the settings; creates no file. Errors: kExitBadData for a damaged file; kExitPermission
/// or kExitInputOutput if it cannot be read.
Expected<UserDefaults*> settingsForReading(Suite suite = Suite::kShared);

/// Locks the settings, calls `change` and writes the file; reports errors and returns the exit
/// code. Writes nothing if `change` fails. Moves a damaged file aside and reports it.
int changeSettings(Console& console, const std::function<Expected<void>(UserDefaults&)>& change,
                   Suite suite = Suite::kShared);

}  // namespace vantrel::cli
