#include "defaults/VantrelUserDefaults.h"

#include "base/Log.h"
#include "platform/system/Paths.h"

namespace vantrel {

namespace {

constexpr std::string_view kMigratedKey = "vantrel_migrate_appgroups";

std::optional<std::filesystem::path> suiteFile() {
  const auto container = paths::groupContainer();
  if (!container) return std::nullopt;
  return *container / "Library" / "Preferences" /
         (std::string(paths::kApplicationGroup) + ".plist");
}

}  // namespace

UserDefaults& VantrelUserDefaults::vantrelUserDefaults() {
  static UserDefaults shared(suiteFile());
  return shared;
}

bool VantrelUserDefaults::hasMigratedDefault() {
  return vantrelUserDefaults().boolForKey(kMigratedKey);
}

void VantrelUserDefaults::migrateUserDefaultsIfNeccessary() {
  if (hasMigratedDefault()) return;
  const auto& standard = UserDefaults::standardUserDefaults();
  if (const auto readable = standard.checkReadable(); !readable) {
    logLine("settings: cannot copy them into the group: " + readable.error().localizedDescription);
    return;
  }
  auto& shared = vantrelUserDefaults();
  for (const auto& [key, value] : standard.dictionaryRepresentation().entries()) {
    shared.setObject(value, key);
  }
  shared.setBool(true, kMigratedKey);
  (void)shared.synchronize();
}

}  // namespace vantrel
