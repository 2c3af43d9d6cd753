#pragma once

#include <functional>

#include "base/Error.h"
#include "cli/Console.h"
#include "platform/system/UserDefaults.h"

namespace vantrel::cli {

enum class Suite {
  kShared,    ///< Of the group: what the widget and the main application both know.
  kStandard,  ///< Of this program alone.
};

/// The settings, which can be read; creates nothing. kExitBadData for a damaged file.
Expected<UserDefaults*> settingsForReading(Suite suite = Suite::kShared);

/// Lets `change` set values and writes them out; gives the exit code. A damaged file is moved
/// aside, which is told. What `change` fails with is told, and nothing is written.
int changeSettings(Console& console, const std::function<Expected<void>(UserDefaults&)>& change,
                   Suite suite = Suite::kShared);

}  // namespace vantrel::cli
