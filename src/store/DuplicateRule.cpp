#include "store/DuplicateRule.h"
#include "store/CustomCamera.h"
#include "store/CustomPoi.h"
#include "store/Planning.h"

#include <algorithm>
#include <cmath>
#include <variant>

namespace vantrel {

namespace {

constexpr std::array<std::string_view, 2> kPlanningKeys = {"date", "name"};
constexpr std::array<std::string_view, 1> kCustomPoiKeys = {"name"};
constexpr std::array<std::string_view, 4> kCustomCameraKeys = {"model", "sensorWidth",
                                                               "sensorHeight", "megapixels"};

bool haveEqualKeys(const DuplicateRule& rule, const ManagedObject& earlier,
                   const ManagedObject& later) {
  return std::all_of(rule.equalKeys.begin(), rule.equalKeys.end(), [&](std::string_view key) {
    const Value value = earlier.valueForKey(key);
    return !std::holds_alternative<std::monostate>(value) && value == later.valueForKey(key);
  });
}

bool isCloseAlong(std::string_view key, const ManagedObject& a, const ManagedObject& b) {
  return areClose(coordinate(a, key), coordinate(b, key));
}

}  // namespace

constexpr DuplicateRule kPlanningRule = {Planning::kEntityName, true, kPlanningKeys};
constexpr DuplicateRule kCustomPoiRule = {CustomPoi::kEntityName, true, kCustomPoiKeys};
constexpr DuplicateRule kCustomCameraRule = {CustomCamera::kEntityName, false, kCustomCameraKeys};
constexpr std::array<const DuplicateRule*, 3> kDuplicateRules = {&kPlanningRule, &kCustomPoiRule,
                                                                 &kCustomCameraRule};

double coordinate(const ManagedObject& object, std::string_view key) {
  const Value value = object.valueForKey(key);
  const auto* degrees = std::get_if<double>(&value);
  return degrees ? *degrees : 0;
}

bool areClose(double a, double b) {
  return std::abs(a - b) < DuplicateRule::kTolerance;
}

bool isDuplicate(const DuplicateRule& rule, const ManagedObject& earlier,
                 const ManagedObject& later) {
  if (!rule.hasPlace) return haveEqualKeys(rule, earlier, later);
  return isCloseAlong(kLatitudeKey, earlier, later) &&
         isCloseAlong(kLongitudeKey, earlier, later) && haveEqualKeys(rule, earlier, later) &&
         earlier.countOfRelatedObjects(kImagesKey) == later.countOfRelatedObjects(kImagesKey);
}

}  // namespace vantrel
