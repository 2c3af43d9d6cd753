#include "units/NSNumberWithDistanceUnit.h"

#include "support/SharedSettings.h"

namespace vantrel {
namespace {

using NSNumberWithDistanceUnitTest = test::SharedSettings;

TEST_F(NSNumberWithDistanceUnitTest, TextsOfLengths) {
  struct Case {
    std::int32_t system;
    float value;
    int decimals;
    int levels;
    const char* text;
  };
  // Computed in exact fractions with Python.
  const Case cases[] = {
      {0, 0, 1, 1, "0mm"},
      {0, 0, 1, 2, "0mm"},
      {0, 999.96f, 1, 1, "1000m"},
      {0, 999.96f, 1, 2, "999m 96cm"},
      {0, 1150, 1, 1, "1.2km"},
      {0, 1250, 1, 1, "1.3km"},
      {0, 1250, 1, 2, "1km 250m"},
      {0, 1000250.5f, 1, 3, "1000km 250m 50cm"},
      {0, 1000, 1, 4, "1km"},
      {0, 0.0625f, 1, 1, "6.3cm"},
      {0, 0.00996f, 1, 1, "10mm"},
      {0, 0.00996f, 1, 2, "1cm"},
      {0, 0.00049f, 0, 1, "0mm"},
      {0, -0.3f, 1, 1, "-30cm"},
      {0, -1250, 1, 2, "-1km 250m"},
      {0, 12345678, 1, 0, "12345.7km"},
      {1, 5279.6f, 1, 1, "5280'"},
      {1, 7932.25f, 1, 1, "2mi"},
      {1, 7932.25f, 1, 2, "1mi 2652'"},
      {1, 7932.25f, 1, 3, "1mi 2652' 3\""},
      {1, 3.59375f / 12, 1, 1, "3 19/32\""},
      {1, 0.015625f / 12, 1, 1, "1/32\""},
      {1, 0.00390625f, 1, 1, "1/16\""},
      {1, 11.984375f / 12, 1, 1, "12\""},
      {1, 11.984375f / 12, 1, 2, "1'"},
      {1, 5.2916667f, 1, 2, "5' 3 1/2\""},
      {1, -5.2916667f, 1, 2, "-5' 3 1/2\""},
      {1, 5279.999f, 1, 2, "1mi"},
      {2, 5280, 1, 1, "1mi"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    DistanceUnitsManager::sharedInstance().setCurrentUnits(c.system);
    const auto number = NSNumberWithDistanceUnit::numberWithFloat(c.value);
    EXPECT_EQ(number.formattedValueWithNumberOfDecimals(c.decimals, c.levels), c.text);
  }
}

TEST_F(NSNumberWithDistanceUnitTest, NumbersAreTheLocales) {
  const auto text = [](float value, int levels) {
    return NSNumberWithDistanceUnit::numberWithFloat(value).formattedValueWithNumberOfDecimals(
        1, levels);
  };
  {
    const test::EnvironmentGuard locale("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(text(12340, 1), "12,3km");
  }
  const test::EnvironmentGuard locale("LC_ALL", "fa_IR.UTF-8");
  DistanceUnitsManager::sharedInstance().setCurrentUnits(1);
  EXPECT_EQ(text(-5.2916667f, 2), "\u200e−۵' ۳ ۱/۲\"");
}

}  // namespace
}  // namespace vantrel
