#include "cli/settings/SettingsAccess.h"

#include "common/ExitCode.h"
#include "defaults/VantrelUserDefaults.h"
#include "platform/system/Paths.h"

namespace vantrel::cli {

namespace {

UserDefaults& settings(Suite suite) {
  return suite == Suite::kShared ? VantrelUserDefaults::vantrelUserDefaults()
                                 : UserDefaults::standardUserDefaults();
}

/// Without a folder, settings would be lost on exit.
Expected<void> checkPlace(Suite suite) {
  if (suite == Suite::kShared ? paths::groupContainer() : paths::configDirectory()) return {};
  return tl::unexpected(
      failure(kExitMissing, "settings", "no folder for them; set HOME or VANTREL_GROUP_CONTAINER"));
}

}  // namespace

Expected<UserDefaults*> settingsForReading(Suite suite) {
  UserDefaults& defaults = settings(suite);
  return defaults.checkReadable().map([&] { return &defaults; });
}

int changeSettings(Console& console, const std::function<Expected<void>(UserDefaults&)>& change,
                   Suite suite) {
  if (const auto place = checkPlace(suite); !place) return console.fail(place.error());
  UserDefaults& defaults = settings(suite);
  const auto readable = defaults.checkReadable();
  const bool damaged = !readable && exitCodeForError(readable.error()) == kExitBadData;
  if (!readable && !damaged) return console.fail(readable.error());
  if (const auto locked = defaults.lock(); !locked) return console.fail(locked.error());
  if (const auto changed = change(defaults); !changed) return console.fail(changed.error());
  // Also reports the error of a write that failed within `change`.
  if (const auto written = defaults.synchronize(); !written) return console.fail(written.error());
  // If `change` set nothing, the file is still damaged.
  if (damaged && defaults.checkReadable()) {
    console.tell("vantrel: " + readable.error().localizedDescription +
                 " They were moved aside; new ones were created.\n");
  }
  return kExitDone;
}

}  // namespace vantrel::cli
