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

/// Without a place, settings would be lost at the end of the program.
Expected<void> checkPlace(Suite suite) {
  if (suite == Suite::kShared ? paths::groupContainer() : paths::configDirectory()) return {};
  return tl::unexpected(
      failure(kExitMissing, "settings", "no place for them; set HOME or VANTREL_GROUP_CONTAINER"));
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
  // Where `change` did this already, and could not, it is tried again for the reason.
  if (const auto written = defaults.synchronize(); !written) return console.fail(written.error());
  // With nothing to write they would stay as they are.
  if (damaged && defaults.checkReadable()) {
    console.tell("vantrel: " + readable.error().localizedDescription +
                 " They were moved aside, and new ones begun.\n");
  }
  return kExitDone;
}

}  // namespace vantrel::cli
