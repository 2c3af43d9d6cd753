#include "units/DistanceUnitsManager.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include "support/SharedSettings.h"

namespace vantrel {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

using DistanceUnitsManagerTest = test::SharedSettings;

TEST_F(DistanceUnitsManagerTest, TheBestUnitIsTheLargestWithAtLeastOne) {
  struct Case {
    std::int32_t system;
    float value;
    std::optional<std::string_view> minimum, maximum;
    const char* name;
  };
  const Case cases[] = {
      {0, 0.0005f, {}, {}, "mm"},
      {0, 0.5f, {}, {}, "cm"},
      {0, 1000, {}, {}, "km"},
      // Single precision throughout: 0.01f / 0.01 would be below 1.
      {0, 0.01f, {}, {}, "cm"},
      {0, std::nextafterf(0.01f, 0), {}, {}, "mm"},
      {0, -5000, {}, {}, "mm"},
      {0, kNaN, {}, {}, "km"},
      {0, 0.001f, "cm", {}, "cm"},
      {0, 5000, {}, "m", "m"},
      {0, 5, "m", "cm", "none"},
      {0, 5, "ft", {}, "none"},
      {1, 0.5f, {}, {}, "in"},
      {1, 5279, {}, {}, "ft"},
      {1, 5280, {}, {}, "mi"},
      {1, 5, "m", {}, "none"},
      {2, 1, {}, {}, "ft"},
  };
  auto& manager = DistanceUnitsManager::sharedInstance();
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.system << ": " << c.value);
    manager.setCurrentUnits(c.system);
    const auto* unit = manager.bestDistanceUnitForValue(c.value, c.minimum, c.maximum);
    EXPECT_EQ(unit ? unit->name() : "none", c.name);
  }
}

TEST_F(DistanceUnitsManagerTest, UnitsFollowTheChosenSystem) {
  auto& manager = DistanceUnitsManager::sharedInstance();
  EXPECT_EQ(manager.indexOfUnit("km"), 3);
  EXPECT_EQ(manager.indexOfUnit("KM"), -1);
  manager.setCurrentUnits(2);
  EXPECT_EQ(manager.indexOfUnit("km"), -1);
  EXPECT_THROW(manager.unitWithName("km"), std::out_of_range);
  EXPECT_EQ(manager.unitWithName("ft").abbrName(), "'");
  EXPECT_EQ(manager.unitWithName("mi").abbrName(), "mi");
  EXPECT_EQ(manager.unitWithName("in").factor(), 0.083333336f);
  EXPECT_EQ(DistanceUnitsManager::distanceUnitToString(true), "Imperial");

  EXPECT_EQ(DistanceUnitsManager().currentUnits(), 2) << "from the settings";
  defaults().removeObjectForKey("global_units");
  manager.setCurrentUnits(2);
  EXPECT_FALSE(defaults().objectForKey("global_units")) << "an equal value is not written";
}

TEST_F(DistanceUnitsManagerTest, FractionsAreTheNearestThirtySecond) {
  // Python: Fraction(floor(32 * v + 1/2), 32).
  const std::pair<float, const char*> cases[] = {
      {0, "0"},        {0.01f, "0"},        {0.015625f, "1/32"}, {0.046875f, "1/16"}, {0.5f, "1/2"},
      {0.625f, "5/8"}, {0.59375f, "19/32"}, {0.96f, "31/32"},    {0.984375f, "1"},    {1, "1"},
      {20000, "1"},    {-20000, "0"},       {kNaN, "1"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(DistanceUnitsManager::fractionInchesForValue(value), text) << value;
  }
}

}  // namespace
}  // namespace vantrel
