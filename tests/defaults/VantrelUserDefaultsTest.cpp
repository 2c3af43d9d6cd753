#include "defaults/VantrelUserDefaults.h"

#include "platform/system/Paths.h"
#include "support/SharedSettings.h"

namespace vantrel {
namespace {

using VantrelUserDefaultsTest = test::SharedSettings;

TEST_F(VantrelUserDefaultsTest, CopiesReadableStandardSettingsOnce) {
  const test::TemporaryDirectory directory;
  const test::EnvironmentGuard environment("XDG_CONFIG_HOME", directory.path());
  auto& standard = UserDefaults::standardUserDefaults();
  standard.setInteger(1, "global_units");
  standard.setBool(false, "vantrel_migrate_appgroups");
  ASSERT_TRUE(standard.synchronize());
  const auto file = *paths::configDirectory() / "vantrel.plist";
  const auto good = test::readFile(file);
  test::writeFile(file, "damaged");
  test::LogCapture log;
  VantrelUserDefaults::migrateUserDefaultsIfNeccessary();
  EXPECT_FALSE(VantrelUserDefaults::hasMigratedDefault());
  EXPECT_NE(log.text().find("vantrel.plist"), std::string::npos);
  test::writeFile(file, good);

  defaults().setInteger(5, "global_units");
  defaults().setInteger(6, "other");
  VantrelUserDefaults::migrateUserDefaultsIfNeccessary();
  EXPECT_TRUE(VantrelUserDefaults::hasMigratedDefault());
  const UserDefaults other(*paths::groupContainer() /
                           "Library/Preferences/group.vantrel.vantrel.plist");
  EXPECT_EQ(other.integerForKey("global_units"), 1);
  EXPECT_EQ(other.integerForKey("other"), 6);

  standard.setInteger(2, "global_units");
  VantrelUserDefaults::migrateUserDefaultsIfNeccessary();
  EXPECT_EQ(defaults().integerForKey("global_units"), 1);
}

}  // namespace
}  // namespace vantrel
