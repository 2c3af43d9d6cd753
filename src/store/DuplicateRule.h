#pragma once

#include <array>
#include <span>
#include <string_view>

#include "objectstore/ManagedObject.h"

namespace vantrel {

/// When a record is a duplicate of an earlier one of its entity. Absent coordinates count as 0;
/// other absent values equal nothing.
struct DuplicateRule {
  std::string_view entityName;
  /// Latitudes and longitudes must differ by less than kTolerance, and as many pictures be
  /// attached.
  bool hasPlace = false;
  std::span<const std::string_view> equalKeys;  ///< Attributes that must be equal exactly.

  static constexpr double kTolerance = 1e-7;  ///< Degrees.
};

/// Plans at the same place and instant with the same name.
extern const DuplicateRule kPlanningRule;
/// Points of interest at the same place with the same name.
extern const DuplicateRule kCustomPoiRule;
/// Cameras of the same model, sensor size and megapixels.
extern const DuplicateRule kCustomCameraRule;
/// All of them, in the order that duplicates are removed in.
extern const std::array<const DuplicateRule*, 3> kDuplicateRules;

/// Whether `later` is a duplicate of `earlier`, as the rule says.
bool isDuplicate(const DuplicateRule& rule, const ManagedObject& earlier,
                 const ManagedObject& later);
/// Degrees; 0 when absent.
double coordinate(const ManagedObject& object, std::string_view key);
/// Plain double arithmetic: infinite ones are close to nothing.
bool areClose(double a, double b);

inline constexpr std::string_view kLatitudeKey = "latitude";
inline constexpr std::string_view kLongitudeKey = "longitude";
inline constexpr std::string_view kImagesKey = "images";

}  // namespace vantrel
